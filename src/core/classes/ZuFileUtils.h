#pragma once

#include <zucore/zucore_export.h>

#include <QByteArray>
#include <QCryptographicHash>
#include <QDateTime>
#include <QString>

/**
 * @namespace ZuFileUtils
 * @brief Small questions about file names, and whole-file reading and writing that reports its
 * own failures to the user.
 *
 * @code #include <zucore/ZuFileUtils.h> @endcode
 *
 * Relative names are taken against the working directory. The name functions need no file on
 * disk. The read and save functions show a modal QMessageBox::warning without a parent on
 * failure and then return an empty or false result; they and the functions that change the
 * cursor need the thread of the user interface. Everything else may run on any thread.
 *
 * Saving never leaves the user with neither the old nor the new file: the new content is
 * written beside the old one (same folder), synced to disk and then renamed over it. On any
 * failure the partial file is removed and the old file stays as it was, byte for byte; the user
 * sees the same boxes, in the same order, as from a save that removes the old file first.
 */
namespace ZuFileUtils {

/// @name Files
/// @{

/// QFile::exists.
ZUCORE_EXPORT bool fileExists(const QString &fileName);
/// True when there is no such file; otherwise the result of QFile::remove (false on failure).
ZUCORE_EXPORT bool removeFile(const QString &fileName);
/// Renames without ever replacing: false when @p oldName is missing, @p newName exists, or
/// QFile::rename fails.
ZUCORE_EXPORT bool renameFile(const QString &oldName, const QString &newName);
/**
 * Copies @p source over @p target, replacing an existing target.
 * @return false when the names are equal as strings (nothing is touched), when the old target
 * can't be removed, or when QFile::copy fails. Two different spellings of one path are refused
 * too, before the target is removed, so that the source is never lost.
 */
ZUCORE_EXPORT bool copyFile(const QString &source, const QString &target);
/// @}

/// @name Parts of a name (the file needn't exist)
/// @{

/// The absolute path of the file's folder.
ZUCORE_EXPORT QString folder(const QString &fileName);
/// The name without its folder.
ZUCORE_EXPORT QString strippedFileName(const QString &fileName);
/// The name without folder, up to its first dot.
ZUCORE_EXPORT QString strippedFileNameWithoutExtension(const QString &fileName);
/// A dot and the suffix after the last dot; "." (never empty) for a name without a suffix.
ZUCORE_EXPORT QString extension(const QString &fileName);
/// strippedFileName() without a " Rev ..." mark, the extension() put back: "Plan Rev 3.pdf"
/// gives "Plan.pdf". Unchanged when there is no mark.
ZUCORE_EXPORT QString strippedFileNameWithoutRev(const QString &fileName);
/// strippedFileNameWithoutExtension() without a " Rev ..." mark. Unchanged without a mark.
ZUCORE_EXPORT QString strippedFileNameWithoutRevExtension(const QString &fileName);
/// @}

/// @name Facts on disk
/// @{

/// QFileInfo::created; an invalid date-time for a missing file.
ZUCORE_EXPORT QDateTime created(const QString &fileName);
/// QFileInfo::lastModified; an invalid date-time for a missing file.
ZUCORE_EXPORT QDateTime lastModified(const QString &fileName);
/// The size in bytes; 0 for a missing file.
ZUCORE_EXPORT qint64 size(const QString &fileName);
/// "n Bytes (n Bytes)" below 1 KiB, else "x.xx KB (...)" or "x.xx MB (...)", the bytes in the
/// brackets with the default locale's group separators. A missing file is "0 Bytes (0 Bytes)".
ZUCORE_EXPORT QString sizeToString(const QString &fileName);
/// The upper-case hex digest of the file's content; an empty array, silently, when the file
/// can't be opened or read.
ZUCORE_EXPORT QByteArray fileChecksum(const QString &fileName,
                                      QCryptographicHash::Algorithm algorithm
                                      = QCryptographicHash::Md5);
/// @}

/// @name Whole files
/// @{

/**
 * The bytes of the file, under a wait cursor.
 * @return an empty array when the file can't be opened, after an Error log line and a warning
 * box titled @p caption: "Cannot read file '<name>'.\n<reason>.".
 */
ZUCORE_EXPORT QByteArray readFromBinaryFile(const QString &fileName, const QString &caption);
/**
 * The text of the file as UTF-8, line ends as single line feeds, cut at the first zero byte.
 * @return an empty string when the file can't be opened, after the same box as
 * readFromBinaryFile() (without the log line).
 */
ZUCORE_EXPORT QString readFromTextFile(const QString &fileName, const QString &caption);
/**
 * Writes @p data as the whole content of the file.
 *
 * Boxes, titled "Error Saving File": "Cannot remove previous version of file <name>:\n<reason>."
 * when the existing file couldn't be removed (it is a folder, or its folder isn't writable);
 * "Unable to save '<name>'.\n\n Is the file currently open?" when the file can't be created.
 * @return true when all bytes were written and the file replaced; false after either box, and
 * false without a box when the write fails or comes up short (a full disk), the old file kept.
 */
ZUCORE_EXPORT bool saveToBinaryFile(const QString &fileName, const QByteArray &data);
/**
 * Writes @p text as UTF-8 without a byte order mark (and native line ends where the platform
 * has them), with the same boxes as saveToBinaryFile().
 * @return false after either box; otherwise true once the file could be opened for writing,
 * whatever the stream then did. When the write fails (a full disk) the old file is kept
 * unchanged and the result is still true: compare the file if you must know.
 */
ZUCORE_EXPORT bool saveToTextFile(const QString &fileName, const QString &text);
/// @}

/// @name Desktop
/// @{

/// Opens @p folder with the desktop (the URL "file:///" + @p folder, parsed tolerantly).
ZUCORE_EXPORT void showFolderInExplorer(const QString &folder);
/**
 * Shows the file selected in the file manager: Windows Explorer with "/select,"; elsewhere the
 * desktop's file manager through org.freedesktop.FileManager1 when it answers on D-Bus,
 * otherwise its folder is opened with QDesktopServices. Nothing is reported.
 */
ZUCORE_EXPORT void showFileInExplorer(const QString &fileName);
/// @}

} // namespace ZuFileUtils
