#pragma once

#include "UtilsDllGlobal.h"

#include <QObject>
#include <QPointer>
#include <QSharedPointer>
#include <QStandardItemModel>
#include <QString>
#include <QStringList>
#include <QTranslator>

namespace VEK_NAMESPACE {

/// The languages that the resource folder ":/translations/" offers, and the user's choice among
/// them.
///
/// A translation file becomes a language by translating "language name" and "language number" in
/// the context "CLanguageManager". The choice is kept in the settings by its number, a locale
/// identifier (LCID); without one it is English, 1033. A host calls loadLanguageForApp() once it
/// has its application, shows model() and calls changeLanguage() with a row of it. Widgets learn of
/// a change through QEvent::LanguageChange, everything else through languageChanged(). QLocale()
/// follows the language. Main thread. No failure is reported.
class UTILSDLL_EXPORT CLanguageManager : public QObject
{
    Q_OBJECT

public:
    /// Made by the first call, gone with the process.
    static CLanguageManager* instance();

    /// One row for each language, four columns of texts: the language's own name, its number, its
    /// file and its abbreviation. Empty until loadLanguages(). Stays the manager's.
    QStandardItemModel* model();

    /// Fills the model, once in the life of the process.
    void loadLanguages();

    /// Fills an empty model with a row for each name. Does nothing if the first three lists aren't
    /// of one length; \a abbreviations may be shorter.
    void createLanguageModel(QStringList names, QStringList numbers, QStringList files,
                             QStringList abbreviations);

    /// Installs the translators of the stored language and makes it the default locale. A stored
    /// number without a row changes nothing.
    void loadLanguageForApp();

    /// The stored number, 1033 if none was stored.
    unsigned int currentLanguageNumber() const;

    /// Stores the number and does nothing else.
    void setCurrentLanguageNumber(unsigned int number);

    /// The stored language's row, -1 if it has none.
    int currentLanguageIndex() const;

    /// The stored language's abbreviation in the model, empty if it has no row.
    QString currentLanguageAbbrv() const;

    /// "ja", "fr", "de" or "en" by the stored number alone.
    QString settingsAbbrv() const;

    /// The number of the model's columns: 0 before it is filled, 4 after. The number of languages
    /// is model()->rowCount().
    int langCount();

    /// Removes and deletes the translator that was installed last.
    void releaseCurrentTranslator();

public Q_SLOTS:
    /// Stores the language of a row and loads it. False if it is the stored one already. A row
    /// outside the model stores 0, which is no language's number.
    bool changeLanguage(int index);

Q_SIGNALS:
    /// The language that changeLanguage() was called for is loaded, and stored.
    void languageChanged();

private:
    CLanguageManager();

    int languageNumber(int row) const;

    static QSharedPointer<CLanguageManager> g_instanceObj;

    QStandardItemModel m_model;
    QPointer<QTranslator> m_translator; ///< the one that the next change removes
    int m_loadedNumber = -1;
};

} // namespace VEK_NAMESPACE
