#pragma once

// Not API: what lets a LOG_* statement skip itself (Logger::isEnabledFor()).

struct LoggerPrivate;

struct LoggerStatementGate
{
    // Something that decides which records are taken changed (appenders, details levels, the
    // global logger itself): statements pass until the global logger works the level out again.
    static void invalidate() noexcept;
    // On the global logger, under its mutex: the lowest level that a statement may need, if it
    // must be worked out again.
    static void update(const LoggerPrivate *global);
};
