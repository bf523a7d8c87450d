#include "LanguageManager.h"

#include "CommonConstants.h"
#include "Settings.h"
#include "TranslationCheck_p.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>

namespace VEK_NAMESPACE {

namespace {

const char context[] = "CLanguageManager";
const char translationsFolder[] = ":/translations/";
const char languageKey[] = "VekAppLanguage";

constexpr unsigned int german = 1031;
constexpr unsigned int english = 1033;
constexpr unsigned int french = 1036;
constexpr unsigned int japanese = 1041;

enum Column
{
    Name,
    Number,
    File,
    Abbreviation,
    ColumnCount
};

/// What stands between "vek_" and the extension; a name without that prefix is cut as if it began
/// a letter before the text.
QString abbreviationOf(const QString& fileName)
{
    const int start = fileName.lastIndexOf(QLatin1String("vek_")) + 4;
    return fileName.mid(start, fileName.lastIndexOf(QLatin1Char('.')) - start);
}

void setColumn(QStandardItemModel* model, Column column, const QStringList& texts)
{
    for (int row = 0; row < model->rowCount(); ++row)
        model->setData(model->index(row, column), texts.value(row), Qt::DisplayRole);
}

bool isFilled(const QStandardItemModel& model)
{
    return model.rowCount() > 0 || model.columnCount() > 0;
}

void load(QTranslator& translator, const QString& file)
{
    if (isSoundTranslation(file))
        translator.load(file);
}

QTranslator* installTranslator(const QString& file)
{
    auto* translator = new QTranslator(QCoreApplication::instance());
    load(*translator, file);
    QCoreApplication::installTranslator(translator);
    return translator;
}

} // namespace

// clazy:exclude=non-pod-global-static
QSharedPointer<CLanguageManager> CLanguageManager::g_instanceObj;

CLanguageManager::CLanguageManager() = default;

CLanguageManager* CLanguageManager::instance()
{
    if (!g_instanceObj)
        g_instanceObj.reset(new CLanguageManager);
    return g_instanceObj.data();
}

QStandardItemModel* CLanguageManager::model()
{
    return &m_model;
}

void CLanguageManager::loadLanguages()
{
    if (isFilled(m_model))
        return;

    // Keeps both texts in the catalogues. A plain tr() would put them into another context.
    (void)QCoreApplication::translate("CLanguageManager", "language name");
    (void)QCoreApplication::translate("CLanguageManager", "language number");

    QStringList names;
    QStringList numbers;
    QStringList files;
    QStringList abbreviations;
    const QString folder = QLatin1String(translationsFolder);
    const QStringList fileNames =
        QDir(folder).entryList({QStringLiteral("*.qm")}, QDir::Files, QDir::NoSort);
    for (const QString& fileName : fileNames) {
        QTranslator translator;
        load(translator, folder + fileName);
        const QString name = translator.translate(context, "language name", "", -1);
        const QString number = translator.translate(context, "language number", "", -1);
        if (name.isEmpty() || number.isEmpty())
            continue;
        names.append(name);
        numbers.append(number);
        files.append(folder + fileName);
        abbreviations.append(abbreviationOf(fileName));
    }
    createLanguageModel(names, numbers, files, abbreviations);
}

// NOLINTBEGIN(performance-unnecessary-value-param)
void CLanguageManager::createLanguageModel(QStringList names, QStringList numbers,
                                           QStringList files, QStringList abbreviations)
// NOLINTEND(performance-unnecessary-value-param)
{
    // The abbreviations aren't compared, which is meant.
    if (isFilled(m_model) || names.size() != numbers.size() || names.size() != files.size())
        return;

    m_model.setColumnCount(ColumnCount);
    m_model.setRowCount(names.size());
    setColumn(&m_model, Name, names);
    setColumn(&m_model, Number, numbers);
    setColumn(&m_model, File, files);
    setColumn(&m_model, Abbreviation, abbreviations);
}

void CLanguageManager::loadLanguageForApp()
{
    loadLanguages();
    const int row = currentLanguageIndex();
    if (row < 0)
        return;

    // Only the last translator is tracked: beside a catalogue of Qt's, the product's stays
    // installed, and a text that a later language lacks comes out in this one. That is meant.
    releaseCurrentTranslator();
    m_translator = installTranslator(m_model.index(row, File).data().toString());
    const QString qtCatalogue =
        QStringLiteral(":/translations/qt_%1.qm").arg(currentLanguageAbbrv());
    if (QFile::exists(qtCatalogue))
        m_translator = installTranslator(qtCatalogue);

    m_loadedNumber = int(currentLanguageNumber());
    QLocale::setDefault(QLocale(currentLanguageAbbrv()));
}

bool CLanguageManager::changeLanguage(int index)
{
    const int number = languageNumber(index);
    if (number == int(currentLanguageNumber()))
        return false;

    setCurrentLanguageNumber(unsigned(number));
    loadLanguageForApp();
    Q_EMIT languageChanged();
    return true;
}

unsigned int CLanguageManager::currentLanguageNumber() const
{
    bool isNumber = false;
    const unsigned int number =
        CSettings().value(QLatin1String(languageKey), english).toUInt(&isNumber);
    return isNumber ? number : english;
}

void CLanguageManager::setCurrentLanguageNumber(unsigned int number)
{
    CSettings().setValue(QLatin1String(languageKey), number);
}

int CLanguageManager::currentLanguageIndex() const
{
    const int number = int(currentLanguageNumber());
    for (int row = 0; row < m_model.rowCount(); ++row) {
        if (languageNumber(row) == number)
            return row;
    }
    return -1;
}

QString CLanguageManager::currentLanguageAbbrv() const
{
    return m_model.index(currentLanguageIndex(), Abbreviation).data().toString();
}

QString CLanguageManager::settingsAbbrv() const
{
    switch (currentLanguageNumber()) {
    case japanese:
        return QStringLiteral("ja");
    case french:
        return QStringLiteral("fr");
    case german:
        return QStringLiteral("de");
    default:
        return QStringLiteral("en");
    }
}

int CLanguageManager::langCount()
{
    return m_model.columnCount(); // not the rows, which is meant
}

void CLanguageManager::releaseCurrentTranslator()
{
    if (!m_translator)
        return;
    QCoreApplication::removeTranslator(m_translator);
    delete m_translator;
}

/// 0 for a row outside the model.
int CLanguageManager::languageNumber(int row) const
{
    return m_model.index(row, Number).data().toInt();
}

} // namespace VEK_NAMESPACE
