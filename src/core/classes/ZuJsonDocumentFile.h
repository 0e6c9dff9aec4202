#pragma once

#include <zucore/zucore_export.h>

#include <QJsonDocument>
#include <QObject>
#include <QString>

class QLockFile;

/**
 * @brief The New, Open, Save, Save As and Revert behaviour of a desktop document whose file is
 * one JSON document, with its dialogs, its messages and an optional advisory lock file.
 *
 * @code #include <zucore/ZuJsonDocumentFile.h> @endcode
 *
 * The class knows nothing of the application's data. Derive from it, implement toJsonDocument()
 * and fromJsonDocument(), give your document type its name and extension in the constructor
 * (setFileTypeName(), setFileExtension()) and connect the change signals of your data to
 * dataWasModified(). The object keeps the file name, the modified flag, the lock, and the JSON
 * document last read or written, which revert() goes back to.
 *
 * | State             | fileName() | isModified() |
 * |-------------------|------------|--------------|
 * | untitled, clean   | empty      | false        |
 * | untitled, changed | empty      | true         |
 * | titled, clean     | set        | false        |
 * | titled, changed   | set        | true         |
 *
 * A successful newFile() leads to "untitled, clean", a successful openFile(), saveFile() or
 * saveFileAs() to "titled, clean"; revert() and closeFile() clear the flag and keep the name.
 * Whatever fails leaves the state as it was, except that a maybeSave() on the way may have saved.
 *
 * On disk, openFile() and saveFile() use the indented text of QJsonDocument::toJson() in UTF-8
 * without a byte order mark. loadFromJsonFile() and saveToJsonFile() also read and write the
 * binary JSON image ("qbjs"), which every build of the library reads and writes alike.
 *
 * Failures are told to the user in QMessageBox::warning boxes without a parent (see each
 * operation) and reach the caller as false or 0. Every operation may raise a box or a dialog, so
 * all belong to the thread of the user interface; boxes run a local event loop, so that
 * dataWasModified() can arrive while one is open.
 *
 * Lock files (off by default, see setUseLockFile()): openFile() and saveFile() take a QLockFile
 * beside the document before they read or write, and a document opened read-only has no lock
 * object at all. The lock is held until unlock(), closeFile(), the destructor or the next lock().
 *
 * Log lines stream their items through QDebug, so that file names appear in quotes.
 *
 * Choices of this implementation:
 * - fileName(), isModified(), jsonDocument(), fileExtension(), fileTypeName() and useLockFile()
 *   read the fields; deriving classes set the two type fields through protected setters;
 * - lockFileName() of an untitled document is the empty string, and lockInfo() without a lock
 *   object is "Lock information not available";
 * - a text save after which the file doesn't hold the new text (the disk filled up half-way:
 *   ZuFileUtils::saveToTextFile() then keeps the old file and still answers true) counts as a
 *   failed save: an Error line "Cannot write file <name>." is logged, no box is shown, and the
 *   document stays modified, so that nothing is lost without a word.
 */
class ZUCORE_EXPORT ZuJsonDocumentFile : public QObject
{
    Q_OBJECT

public:
    /// An untitled, clean document of the type "JSON File" with the extension "json", lock
    /// files off.
    explicit ZuJsonDocumentFile(QObject *parent = nullptr);
    /// Calls this class's closeFile() (not an override): gives up the lock and clears the flag.
    ~ZuJsonDocumentFile() override;

    /// The full name of the current file; empty for a document that was never saved or loaded.
    QString fileName() const;
    /// Whether the application's data differs from the file.
    bool isModified() const;
    /// The document last loaded, or last produced for saving; a null document at first.
    QJsonDocument jsonDocument() const;
    /// The file extension without its dot, for the filter of the file dialogs ("json").
    QString fileExtension() const;
    /// The human name of the file type ("JSON File"), used in titles and the dialogs' filter.
    QString fileTypeName() const;
    /// Whether openFile() and saveFile() take lock files.
    bool useLockFile() const;

    /// Stores @p modified; emits modifiedChanged() only when the value changes.
    void setModified(bool modified);

    /// @name Lock file
    /// @{

    /// Switches lock files on or off for this document. A lock already held stays held.
    void setUseLockFile(bool use);
    /**
     * The lock file of fileName(): its folder, a slash, its complete base name and ".lock", so
     * that only the last suffix is replaced (Plan.final.json locks as Plan.final.lock).
     * Empty for an untitled document.
     */
    QString lockFileName() const;
    /**
     * The owner of the lock as "Process Id:<pid> Host Name:'<host>' Application Name:'<app>'";
     * "Lock information not available" without a lock object or when the lock file can't be read.
     */
    QString lockInfo() const;
    /// Releases a held lock (its file is removed) and deletes the lock object. Does nothing
    /// without one.
    void unlock();
    /**
     * Whether the lock object holds its lock; true without a lock object (a new document, one
     * opened read-only, or lock files off). False only while a lock attempt is under way.
     */
    bool isLocked() const;
    /// @}

    /// The name shown and proposed for a document without a file name. Here: empty.
    virtual QString defaultFileName() const;
    /// Gives up the lock and clears the modified flag, asking nothing and keeping the name and
    /// the document.
    virtual void closeFile();
    /**
     * Starts an empty document: maybeSave(), closeFile(), forgets the name and the document,
     * clearData(), clears the flag.
     * @return false when maybeSave() refused (nothing changed), true otherwise.
     */
    virtual bool newFile();
    /**
     * Opens @p fileName, or the file chosen in getOpenFileName() when it is empty, after
     * maybeSave(). With lock files on, lock(name, true) comes before the file is read.
     * @return 1 when the document was loaded; 0 when maybeSave() or the dialog was cancelled,
     * the file doesn't exist (logged at Error level, no box), the lock was refused, or
     * loadFromJsonFile() failed. The document is then as it was.
     */
    virtual int openFile(const QString &fileName = QString());
    /**
     * Saves to @p fileName, else to fileName(), else to the name chosen in getSaveFileName().
     * With lock files on, lock(name, false) comes first. On success a modeless box titled
     * "File Saved" shows the file name for 1500 ms.
     * @return false when the dialog or the lock was cancelled (nothing written) or
     * saveToJsonFile() failed; the document then stays modified.
     */
    virtual bool saveFile(const QString &fileName = QString());
    /**
     * Asks for a name (proposing fileName(), or for an untitled document through
     * getSaveFileName()) and saves to it.
     * @return false when the dialog is cancelled, otherwise saveFile()'s result.
     */
    virtual bool saveFileAs();
    /**
     * Offers to save a modified document in a box with Save, Discard and Cancel.
     * @return true when the caller may go on: the document isn't modified, the user discarded
     * (the flag stays set) or the save succeeded; false on Cancel or a failed save.
     */
    virtual bool maybeSave();
    /**
     * Goes back to jsonDocument() through fromJsonDocument(), without reading the file, and
     * keeps the file name. True and nothing done when the document isn't modified.
     * @return false, after the box "Error reverting file <name>.", when fromJsonDocument()
     * refused; the document stays modified.
     */
    virtual bool revert();
    /**
     * Reads @p fileName (as binary JSON when @p binary is set, otherwise as UTF-8 text) and hands
     * it to fromJsonDocument(), which sees the new fileName() already. Text that doesn't parse
     * arrives there as a null document.
     * @return false when the file can't be read (ZuFileUtils' box titled @p errorTitle), is
     * empty (no box), or fromJsonDocument() refuses it (box "Cannot read file <name>:\nNot saved
     * as a valid document."); the name, the document and the flag then stay as they were.
     */
    virtual bool loadFromJsonFile(const QString &fileName, bool binary = false,
                                  const QString &errorTitle = QStringLiteral("Error Reading File"));
    /**
     * Writes toJsonDocument() to @p fileName. When the name, without its folder and " Rev ..."
     * mark, is that of the current file (or the document is untitled), the name is taken over
     * and the flag cleared; otherwise this is another document, and the data is reloaded from
     * the file just written through loadFromJsonFile().
     * @return false when the write failed (ZuFileUtils' boxes; the previous file is kept) or the
     * reload was refused (the new file stays, the old name and the flag are kept).
     * jsonDocument() holds the new content in either case.
     */
    virtual bool saveToJsonFile(const QString &fileName, bool binary = false);
    /// The open dialog, titled "Open <type>"; empty when the user cancels.
    virtual QString getOpenFileName() const;
    /// The save dialog, titled "Save <type> File As", proposing defaultFileName(); empty when
    /// the user cancels.
    virtual QString getSaveFileName() const;
    /// The application's data as a document.
    virtual QJsonDocument toJsonDocument() = 0;
    /**
     * Replaces the application's data by the content of @p document.
     * @return false when the document isn't valid for the application (a file that didn't
     * parse arrives as a null document).
     */
    virtual bool fromJsonDocument(const QJsonDocument &document) = 0;
    /// Empties the application's data for newFile(). Here: does nothing.
    virtual void clearData();
    /**
     * Takes the lock file of @p fileName, after giving up any lock held, waiting 100 ms for
     * each attempt; a lock file is never judged stale by its age. On failure the reason is
     * logged at Error level and lockRetry() asks: Retry removes a stale lock file and tries again
     * (as often as the user wants), Open Read Only (only with @p allowReadOnly) goes on without a
     * lock.
     * @return true when the lock is held or the user chose to go on without it; false on Cancel.
     */
    virtual bool lock(const QString &fileName, bool allowReadOnly);
    /**
     * Asks the user, in a modal box without a title, whether to retry a failed lock: buttons
     * Retry (the default), "Open Read Only" when @p allowReadOnly is set, and Cancel.
     * @return 2 for Retry, 1 for Open Read Only, 0 for Cancel or a closed box. An override may
     * answer without a box; any value other than 1 and 2 counts as Cancel.
     */
    virtual int lockRetry(const QString &fileName, const QString &message,
                          bool allowReadOnly) const;

public Q_SLOTS:
    /**
     * Marks the data as changed. Ignored while lock files are on and a lock object exists that
     * doesn't hold its lock.
     */
    void dataWasModified();

Q_SIGNALS:
    /// The modified flag changed to @p modified; never emitted for a repeated value.
    void modifiedChanged(bool modified);

protected:
    /// Sets the extension, without its dot, used by the dialogs' filter.
    void setFileExtension(const QString &extension);
    /// Sets the human name of the file type; titles add their own word "File" after it.
    void setFileTypeName(const QString &typeName);

private:
    QString fileFilter() const;
    void showFileSaved();

    QJsonDocument m_jsonDocument;
    QString m_fileName;
    QString m_fileExtension;
    QString m_fileTypeName;
    bool m_modified = false;
    QLockFile *m_lockFile = nullptr;
    bool m_useLockFile = false;
};
