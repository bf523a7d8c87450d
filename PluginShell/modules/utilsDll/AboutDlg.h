#pragma once

#include "BaseDialog.h"

#include <QScopedPointer>
#include <QStringList>
#include <QThread>

/// The product's about box: name, version, home page, the legal notice, and below it the text of
/// every "*.txt" in the folder "Contents/Licenses" of the product's bundle, by name. Two of them
/// are there from the start, the others come in from a thread.
///
/// It closes by itself as soon as another window is activated, and then deletes itself: make it
/// with new and show it. The notices' text is taken for markup. GUI thread.
class UTILSDLL_EXPORT CAboutDlg : public VEK_NAMESPACE::CBaseDialog
{
    Q_OBJECT

public:
    /// Starts to read the notices. \a parent may be null.
    explicit CAboutDlg(QWidget* parent);
    /// Waits for the file that is being read.
    ~CAboutDlg() override;

    /// Adds a blank and \a name to the product's name; an empty one is passed over.
    void updateProductName(const QString& name);

protected:
    /// Closes the box when another window is activated.
    bool event(QEvent* event) override;
    /// Serves pending events at the first show: from then on a deactivation closes the box.
    void showEvent(QShowEvent* event) override;

private Q_SLOTS:
    void addFileContents(const QString& contents);

private:
    struct Private;
    const QScopedPointer<Private> d;
};

/// Reads notice files, one after the other. One that can't be opened is passed over. It looks for
/// an interruption request before each file.
class UTILSDLL_EXPORT LicensesDownloadThread : public QThread
{
    Q_OBJECT

public:
    /// The paths are absolute.
    explicit LicensesDownloadThread(const QStringList& files, QObject* parent = nullptr);
    /// The thread must have ended.
    ~LicensesDownloadThread() override;

Q_SIGNALS:
    /// The lines of one file, each with a line break in markup behind it, and a line that parts it
    /// from the next.
    void fileRead(const QString& contents);

protected:
    /// Reads the files, and sends one signal for each.
    void run() override;

private:
    const QStringList m_files;
};
