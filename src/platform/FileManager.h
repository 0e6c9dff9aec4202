#pragma once

#include <QString>

namespace ZuPlatform {

/**
 * Shows @p fileName selected in the platform's file manager, without waiting for it.
 *
 * Windows: starts "explorer" detached with "/select," and the native name. Elsewhere: asks the
 * desktop's file manager over D-Bus (org.freedesktop.FileManager1.ShowItems) when Qt DBus is
 * built in and a file manager answers; otherwise opens the file's folder with QDesktopServices.
 * Failures are not reported.
 */
void showFileInFileManager(const QString &fileName);

} // namespace ZuPlatform
