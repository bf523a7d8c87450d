#include "qtsoap.h"

#include "Envelopes.h"
#include "SoapText.h"
#include "XmlText.h"

#include <QDomDocument>
#include <QtTest>

#include <atomic>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace {

/// A text that counts how many of its kind live.
class Counted : public QtSoapSimpleType
{
public:
    explicit Counted(const QString& name, const QString& text = {})
        : QtSoapSimpleType(QtSoapQName(name), text)
    {
        ++living;
    }
    Counted(const Counted& other)
        : QtSoapSimpleType(other)
    {
        ++living;
    }
    Counted& operator=(const Counted&) = default;
    ~Counted() override { --living; }

    static int living;
};

int Counted::living = 0;

struct TypeName
{
    QtSoapType::Type type;
    const char* name;
};

const TypeName typeNames[] = {
    {QtSoapType::Duration, "duration"},
    {QtSoapType::DateTime, "dateTime"},
    {QtSoapType::Time, "time"},
    {QtSoapType::Date, "date"},
    {QtSoapType::GYearMonth, "gYearMonth"},
    {QtSoapType::GYear, "gYear"},
    {QtSoapType::GMonthDay, "gMonthDay"},
    {QtSoapType::GDay, "gDay"},
    {QtSoapType::GMonth, "gMonth"},
    {QtSoapType::Boolean, "boolean"},
    {QtSoapType::Base64Binary, "base64Binary"},
    {QtSoapType::HexBinary, "hexBinary"},
    {QtSoapType::Float, "float"},
    {QtSoapType::Double, "double"},
    {QtSoapType::AnyURI, "anyURI"},
    {QtSoapType::QName, "QName"},
    {QtSoapType::NOTATION, "NOTATION"},
    {QtSoapType::String, "string"},
    {QtSoapType::NormalizedString, "normalizedString"},
    {QtSoapType::Token, "token"},
    {QtSoapType::Language, "language"},
    {QtSoapType::Name, "Name"},
    {QtSoapType::NMTOKEN, "NMTOKEN"},
    {QtSoapType::NCName, "NCName"},
    {QtSoapType::ID, "ID"},
    {QtSoapType::IDREF, "IDREF"},
    {QtSoapType::ENTITY, "ENTITY"},
    {QtSoapType::Decimal, "decimal"},
    {QtSoapType::Integer, "integer"},
    {QtSoapType::NonPositiveInteger, "nonPositiveInteger"},
    {QtSoapType::NegativeInteger, "negativeInteger"},
    {QtSoapType::Long, "long"},
    {QtSoapType::Int, "int"},
    {QtSoapType::Short, "short"},
    {QtSoapType::Byte, "byte"},
    {QtSoapType::NonNegativeInteger, "nonNegativeInteger"},
    {QtSoapType::UnsignedLong, "unsignedLong"},
    {QtSoapType::PositiveInteger, "positiveInteger"},
    {QtSoapType::UnsignedInt, "unsignedInt"},
    {QtSoapType::UnsignedShort, "unsignedShort"},
    {QtSoapType::UnsignedByte, "unsignedByte"},
    {QtSoapType::Array, "Array"},
    {QtSoapType::Struct, "Struct"},
};

/// What is written for a value, without the declarations of prefixes.
QString written(const QtSoapType& value)
{
    QDomDocument document;
    QDomElement root = document.createElement(QStringLiteral("root"));
    document.appendChild(root);
    root.appendChild(value.toDomElement(document));
    const QString text = XmlText::of(document.toString(-1));
    return text.startsWith(QLatin1String("root (")) ? text.mid(6, text.size() - 7) : text;
}

QtSoapSimpleType* number(int value)
{
    return new QtSoapSimpleType(QtSoapQName(QStringLiteral("number")), value);
}

QtSoapSimpleType* text(const char* name, const char* value)
{
    return new QtSoapSimpleType(QtSoapQName(QString::fromUtf8(name)), QString::fromUtf8(value));
}

} // namespace

using Make = std::function<QtSoapSimpleType()>;
using Fill = std::function<void(QtSoapArray&)>;

using Use = std::function<void()>;
using Find = std::function<const QtSoapType&()>;

Q_DECLARE_METATYPE(Fill)
Q_DECLARE_METATYPE(Find)
Q_DECLARE_METATYPE(Use)
Q_DECLARE_METATYPE(QtSoapQName)
Q_DECLARE_METATYPE(QtSoapType::Type)
Q_DECLARE_METATYPE(Make)
Q_DECLARE_METATYPE(QDomElement)

class tst_SoapTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    // Names
    void namesAreOrdered_data();
    void namesAreOrdered();
    void namesAreTakenApart();

    // Types
    void theOrderOfTypesIsFixed();
    void typesHaveNames_data();
    void typesHaveNames();
    void namesAreTypes_data();
    void namesAreTypes();

    // Simple values
    void theBaseHasNoContent();
    void theBaseIsReadAndWritten();
    void aNullDocumentIsWrittenTo();
    void simpleValuesAreMade_data();
    void simpleValuesAreMade();
    void simpleValuesAreRead_data();
    void simpleValuesAreRead();
    void whatIsNoNumberIsRead();
    void bothSchemasAreRead_data();
    void bothSchemasAreRead();
    void textThatDoesNotFitIsRefused_data();
    void textThatDoesNotFitIsRefused();
    void aFailureTakesTheFormerContent();
    void nullValuesAreRead_data();
    void nullValuesAreRead();
    void nullContainersAreRead_data();
    void nullContainersAreRead();
    void simpleValuesAreWritten_data();
    void simpleValuesAreWritten();
    void referencesAreWrittenWithoutContent();
    void readAndWrittenAgain_data();
    void readAndWrittenAgain();
    void attributesAreChanged();
    void clearLeavesNameAndType();

    // Arrays
    void sizesMakeDimensions_data();
    void sizesMakeDimensions();
    void membersLieWhereTheyAreInserted_data();
    void membersLieWhereTheyAreInserted();
    void appendingGoesBehindTheLast_data();
    void appendingGoesBehindTheLast();
    void insertingReplaces();
    void badPositionsAreRefused_data();
    void badPositionsAreRefused();
    void tooFewPositionsAreRefused();
    void arraysAreWritten_data();
    void arraysAreWritten();
    void aLargeSizeTakesNoMemory();
    void nothingGoesBehindTheLastPosition();
    void anArrayIsReadIntoAnother();
    void anArrayIsWalked();
    void anArrayIsWalkedByDimension();
    void theEndOfAnArray();
    void clearingAnArrayKeepsItsSizes();

    // Structs
    void membersAreFound();
    void aPlainNameFindsAnyNamespace();
    void membersKeepTheirOrder();
    void aMemberReplacesItsNamesake();
    void aLargeStructIsSearched();
    void aStructIsWalked();
    void structsAreWritten();
    void structsAreRead();
    void textBetweenMembersIsKept();

    // What isn't there
    void nothingIsFound_data();
    void nothingIsFound();
    void whatIsNotThereCannotBeChanged();

    // Ownership
    void containersReleaseTheirMembers_data();
    void containersReleaseTheirMembers();
    void copiesShareTheirMembers();
    void addingToACopyLeavesTheOriginal_data();
    void addingToACopyLeavesTheOriginal();
    void oneObjectInTwoContainers();
    void oneObjectTwice();
    void nothingIsInserted();
    void aContainerRefusesItself_data();
    void aContainerRefusesItself();
    void iteratorsKeepTheMembers();
    void copiesOfSimpleValues();
    void copiesOfArrays();

    // References
    void referencesAreFollowed_data();
    void referencesAreFollowed();
    void referencesThatLeadNowhere_data();
    void referencesThatLeadNowhere();
    void referencesLeadOutOfTheElement_data();
    void referencesLeadOutOfTheElement();
    void referencesDoNotLeadIntoADocumentThatOneIsNotIn();
    void referencesThatCannotBeFollowed_data();
    void referencesThatCannotBeFollowed();
    void elementsThatAreRefused_data();
    void elementsThatAreRefused();

    // Factory and prefixes
    void elementsBecomeValues_data();
    void elementsBecomeValues();
    void noElementIsNoValue();
    void aHandlerReadsItsType();
    void aHandlerGetsTheWholeElement();
    void handlersWithinEachOther_data();
    void handlersWithinEachOther();
    void aHandlerThatFails();
    void aHandlerIsRegisteredOnce();
    void prefixesAreRegistered();
    void prefixesThatCannotBe_data();
    void prefixesThatCannotBe();
    void prefixesAreUsed();
    void bothRegistriesServeAllThreads();
};

void tst_SoapTypes::cleanup()
{
    QCOMPARE(Counted::living, 0);
}

void tst_SoapTypes::namesAreOrdered_data()
{
    QTest::addColumn<QtSoapQName>("left");
    QTest::addColumn<QtSoapQName>("right");
    QTest::addColumn<bool>("equal");
    QTest::addColumn<bool>("less");
    QTest::addColumn<bool>("greater");

    QTest::newRow("the same name")
        << QtSoapQName("a") << QtSoapQName("a") << true << false << false;
    QTest::newRow("the same name and namespace")
        << QtSoapQName("a", "urn:x") << QtSoapQName("a", "urn:x") << true << false << false;
    QTest::newRow("no names") << QtSoapQName() << QtSoapQName() << true << false << false;
    QTest::newRow("another name") << QtSoapQName("a", "urn:x") << QtSoapQName("b", "urn:x") << false
                                  << true << false;
    QTest::newRow("another namespace")
        << QtSoapQName("a", "urn:x") << QtSoapQName("a", "urn:y") << false << true << false;
    QTest::newRow("the name counts before the namespace")
        << QtSoapQName("a", "urn:y") << QtSoapQName("b", "urn:x") << false << true << false;
    QTest::newRow("a namespace and none")
        << QtSoapQName("a", "urn:x") << QtSoapQName("a") << false << false << true;
    QTest::newRow("a name and none") << QtSoapQName("a") << QtSoapQName() << false << false << true;
    QTest::newRow("capital letters")
        << QtSoapQName("A") << QtSoapQName("a") << false << true << false;
}

void tst_SoapTypes::namesAreOrdered()
{
    QFETCH(QtSoapQName, left);
    QFETCH(QtSoapQName, right);

    QTEST(left == right, "equal");
    QTEST(right == left, "equal");
    QTEST(left < right, "less");
    QTEST(right < left, "greater");
}

void tst_SoapTypes::namesAreTakenApart()
{
    QtSoapQName name("price", "urn:shop");
    QCOMPARE(name.name(), QString("price"));
    QCOMPARE(name.uri(), QString("urn:shop"));

    name = QString("count");
    QCOMPARE(name.name(), QString("count"));
    QCOMPARE(name.uri(), QString());
}

void tst_SoapTypes::theOrderOfTypesIsFixed()
{
    int value = 0;
    for (const TypeName& row : typeNames)
        QCOMPARE(int(row.type), value++);
    QCOMPARE(int(QtSoapType::Other), 43);
}

void tst_SoapTypes::typesHaveNames_data()
{
    QTest::addColumn<QtSoapType::Type>("type");
    QTest::addColumn<QString>("name");

    for (const TypeName& row : typeNames)
        QTest::newRow(row.name) << row.type << row.name;
}

void tst_SoapTypes::typesHaveNames()
{
    QFETCH(QtSoapType::Type, type);
    QFETCH(QString, name);

    QCOMPARE(QtSoapType::typeToName(type), name);
    QCOMPARE(QtSoapType::nameToType(name), type);
    QCOMPARE(QtSoapType(QtSoapQName("a"), type).typeName(), name);
}

void tst_SoapTypes::namesAreTypes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QtSoapType::Type>("type");

    QTest::newRow("nothing") << QString() << QtSoapType::Other;
    QTest::newRow("a type of somebody's") << "Order" << QtSoapType::Other;
    QTest::newRow("another spelling") << "INT" << QtSoapType::Other;
    QTest::newRow("a part of a name") << "unsigned" << QtSoapType::Other;
    QTest::newRow("a prefix") << "xsd:int" << QtSoapType::Other;
}

void tst_SoapTypes::namesAreTypes()
{
    QFETCH(QString, name);

    QTEST(QtSoapType::nameToType(name), "type");
    QCOMPARE(QtSoapType::typeToName(QtSoapType::Other), QString());
    QCOMPARE(QtSoapType::typeToName(QtSoapType::Type(44)), QString());
    QCOMPARE(QtSoapType::typeToName(QtSoapType::Type(-1)), QString());
}

void tst_SoapTypes::theBaseHasNoContent()
{
    const QtSoapType value(QtSoapQName("a", "urn:x"));
    QCOMPARE(value.type(), QtSoapType::Other);
    QCOMPARE(SoapText::ofName(value.name()), QString("{urn:x}a"));
    QVERIFY(!value.isValid());
    QCOMPARE(value.count(), 0);
    QVERIFY(!value.value().isValid());
    QCOMPARE(value.toString(), QString());
    QCOMPARE(value.toInt(), 0);
    QVERIFY(!value.toBool());
    QCOMPARE(value.typeName(), QString());
    QCOMPARE(QtSoapType().name().name(), QString());
}

void tst_SoapTypes::theBaseIsReadAndWritten()
{
    QtSoapType value;
    QVERIFY(value.parse(element(R"(<a xmlns="urn:x" id="one" xsi:type="xsd:int">3</a>)")));
    QCOMPARE(SoapText::ofName(value.name()), QString("{urn:x}a"));
    QCOMPARE(value.id(), QString("one"));
    QCOMPARE(value.type(), QtSoapType::Int);
    QCOMPARE(value.toInt(), 0);
    QCOMPARE(written(value), QString("{urn:x}a id=one xsi:type=xsd:int"));

    // Its members are those of any value.
    const QtSoapType& constant = value;
    QVERIFY(!constant[QtSoapQName("a", "urn:x")].isValid());
}

void tst_SoapTypes::aNullDocumentIsWrittenTo()
{
    const QtSoapSimpleType value(QtSoapQName("a", "urn:x"), 1);
    QDomElement written = value.toDomElement(QDomDocument());
    QCOMPARE(written.localName(), QString("a"));
    QCOMPARE(written.namespaceURI(), QString("urn:x"));
    QCOMPARE(written.text(), QString("1"));
    // It is of a document that stays.
    written.appendChild(written.ownerDocument().createTextNode(" and more"));
    QCOMPARE(written.text(), QString("1 and more"));
}

void tst_SoapTypes::simpleValuesAreMade_data()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<QtSoapType::Type>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("string");
    QTest::addColumn<int>("integer");
    QTest::addColumn<bool>("boolean");

    const QtSoapQName name("a");
    QTest::newRow("a number") << Make([=] { return QtSoapSimpleType(name, 42); }) << QtSoapType::Int
                              << QVariant(42) << "42" << 42 << true;
    QTest::newRow("zero") << Make([=] { return QtSoapSimpleType(name, 0); }) << QtSoapType::Int
                          << QVariant(0) << "0" << 0 << false;
    QTest::newRow("the lowest number")
        << Make([=] { return QtSoapSimpleType(name, -2147483647 - 1); }) << QtSoapType::Int
        << QVariant(-2147483647 - 1) << "-2147483648" << -2147483647 - 1 << true;
    QTest::newRow("true") << Make([=] { return QtSoapSimpleType(name, true, 0); })
                          << QtSoapType::Boolean << QVariant(true) << "true" << 1 << true;
    QTest::newRow("false") << Make([=] { return QtSoapSimpleType(name, false, 0); })
                           << QtSoapType::Boolean << QVariant(false) << "false" << 0 << false;
    QTest::newRow("a text") << Make([=] { return QtSoapSimpleType(name, QString("Grüße")); })
                            << QtSoapType::String << QVariant(QString("Grüße")) << "Grüße" << 0
                            << false;
    QTest::newRow("a text that is a number")
        << Make([=] { return QtSoapSimpleType(name, QString("7")); }) << QtSoapType::String
        << QVariant(QString("7")) << "7" << 7 << true;
    QTest::newRow("a text with space around it")
        << Make([=] { return QtSoapSimpleType(name, QString(" a ")); }) << QtSoapType::String
        << QVariant(QString(" a ")) << " a " << 0 << false;
}

void tst_SoapTypes::simpleValuesAreMade()
{
    QFETCH(Make, make);
    QFETCH(QVariant, value);

    const QtSoapSimpleType made = make();
    QTEST(made.type(), "type");
    QVERIFY(made.isValid());
    QCOMPARE(made.value(), value);
    QCOMPARE(made.value().userType(), value.userType());
    QTEST(made.toString(), "string");
    QTEST(made.toInt(), "integer");
    QTEST(made.toBool(), "boolean");
    QCOMPARE(made.count(), 0);
    QCOMPARE(made.name().name(), QString("a"));
    QCOMPARE(made.errorString(), QString());
}

void tst_SoapTypes::simpleValuesAreRead_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("content");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("string");

    const auto row = [](const char* type, const char* content, const QVariant& value,
                        const char* string) {
        QTest::newRow(qPrintable(
            QStringLiteral("%1 \"%2\"").arg(QLatin1String(type), QString::fromUtf8(content))))
            << QString::fromLatin1(type) << QString::fromUtf8(content) << value
            << QString::fromUtf8(string);
    };
    const auto same = [row](const char* type, const char* content, const QVariant& value) {
        row(type, content, value, content);
    };
    const auto text = [](const char* content) { return QVariant(QString::fromUtf8(content)); };

    same("boolean", "true", true);
    same("boolean", "false", false);
    same("boolean", "1", true);
    same("boolean", "0", false);
    same("byte", "-128", -128);
    same("byte", "127", 127);
    same("unsignedByte", "255", 255);
    same("short", "-32768", -32768);
    same("unsignedShort", "65535", 65535);
    same("int", "-2147483648", -2147483647 - 1);
    same("int", "2147483647", 2147483647);
    same("int", "+5", 5);
    same("int", "007", 7);
    row("int", " 12\n", 12, "12");
    same("unsignedInt", "4294967295", 4294967295U);
    same("long", "-9223372036854775808", std::numeric_limits<qlonglong>::min());
    same("long", "9223372036854775807", std::numeric_limits<qlonglong>::max());
    same("unsignedLong", "18446744073709551615", std::numeric_limits<qulonglong>::max());
    same("unsignedLong", "0", qulonglong(0));
    same("unsignedLong", "-0", qulonglong(0));
    same("integer", "-12", qlonglong(-12));
    same("integer", "18446744073709551615", std::numeric_limits<qulonglong>::max());
    same("integer", "100000000000000000000", text("100000000000000000000"));
    same("negativeInteger", "-1", qlonglong(-1));
    same("nonPositiveInteger", "0", qlonglong(0));
    same("positiveInteger", "1", qlonglong(1));
    same("nonNegativeInteger", "0", qlonglong(0));
    same("float", "34.5", 34.5);
    same("double", "-1.5E-3", -0.0015);
    same("double", "INF", std::numeric_limits<double>::infinity());
    same("double", "-INF", -std::numeric_limits<double>::infinity());
    same("double", "1e999", std::numeric_limits<double>::infinity());
    same("double", "-1e999", -std::numeric_limits<double>::infinity());
    same("double", "1e-999", 0.0);
    same("double", "1e99999999999999999999", std::numeric_limits<double>::infinity());
    same("double", "1e-99999999999999999999", 0.0);
    same("double", "0." + QByteArray(400, '0') + "1", 0.0);
    same("double", "-0." + QByteArray(500, '0') + "1e5", 0.0);
    same("double", "0." + QByteArray(500, '0') + "1e900", std::numeric_limits<double>::infinity());
    same("double", QByteArray(400, '1') + "e-800", 0.0);
    same("double", QByteArray(400, '1'), std::numeric_limits<double>::infinity());
    same("decimal", "12345678901234567890.125", 12345678901234567890.125);
    same("date", "2013-02-28", QDate(2013, 2, 28));
    same("date", "2012-02-29", QDate(2012, 2, 29));
    same("date", "12013-02-28", text("12013-02-28"));
    same("date", "-0044-03-15", text("-0044-03-15"));
    same("time", "13:20:05", QTime(13, 20, 5));
    same("time", "13:20:05.250", QTime(13, 20, 5, 250));
    same("time", "24:00:00.0", QTime(0, 0));
    same("dateTime", "2013-02-28T13:20:05Z",
         QDateTime(QDate(2013, 2, 28), QTime(13, 20, 5), Qt::UTC));
    same("dateTime", "2013-02-28T13:20:05-05:00",
         QDateTime(QDate(2013, 2, 28), QTime(18, 20, 5), Qt::UTC));
    same("dateTime", "2013-02-28T13:20:05",
         QDateTime(QDate(2013, 2, 28), QTime(13, 20, 5), Qt::LocalTime));
    same("dateTime", "2013-02-28T24:00:00Z", QDateTime(QDate(2013, 3, 1), QTime(0, 0), Qt::UTC));
    same("dateTime", "12013-02-28T13:20:05Z", text("12013-02-28T13:20:05Z"));
    same("base64Binary", "YWI=", QByteArray("ab"));
    same("base64Binary", "YQ==", QByteArray("a"));
    same("base64Binary", "AAH/YWJj",
         QByteArray("\x00\x01\xff"
                    "abc",
                    6));
    row("base64Binary", "AAH/\nYWJj",
        QByteArray("\x00\x01\xff"
                   "abc",
                   6),
        "AAH/\nYWJj");
    same("hexBinary", "0FB7", QByteArray("\x0f\xb7"));
    same("hexBinary", "0fb7", QByteArray("\x0f\xb7"));
    same("string", "", text(""));
    same("string", "  two words ", text("  two words "));
    same("string", "&lt;a&gt; &amp; \U0001F4F7", text("<a> & \U0001F4F7"));
    same("anyURI", "http://example.org/?a=b", text("http://example.org/?a=b"));
    same("duration", "P1Y2M3DT10H30M", text("P1Y2M3DT10H30M"));
    same("duration", "-P3D", text("-P3D"));
    same("duration", "P1YT2H", text("P1YT2H"));
    same("duration", "PT1.5S", text("PT1.5S"));
    same("gYear", "2013", text("2013"));
    same("gYearMonth", "2013-02", text("2013-02"));
    same("gMonthDay", "--02-28", text("--02-28"));
    same("gDay", "---28", text("---28"));
    same("gMonth", "--02", text("--02"));
    same("gMonth", "--02--", text("--02--"));
    same("gMonth", "--02+01:00", text("--02+01:00"));
    same("gMonth", "--02-05:00", text("--02-05:00"));
    same("gMonth", "--02---05:00", text("--02---05:00"));
    same("token", "one two", text("one two"));
    same("normalizedString", "one two", text("one two"));
    same("language", "en-GB", text("en-GB"));
    same("NMTOKEN", "7up", text("7up"));
    same("NCName", "up", text("up"));
    same("Name", "a:b", text("a:b"));
    same("ID", "one", text("one"));
    same("IDREF", "one", text("one"));
    same("ENTITY", "one", text("one"));
    same("QName", "xsd:int", text("xsd:int"));
    same("NOTATION", "xsd:int", text("xsd:int"));
}

void tst_SoapTypes::simpleValuesAreRead()
{
    QFETCH(QString, type);
    QFETCH(QString, content);
    QFETCH(QVariant, value);
    QFETCH(QString, string);

    QtSoapSimpleType simple;
    QVERIFY2(
        simple.parse(element(QStringLiteral("<a xsi:type=\"xsd:%1\">%2</a>").arg(type, content))),
        qPrintable(simple.errorString()));
    QVERIFY(simple.isValid());
    QCOMPARE(simple.name().name(), QString("a"));
    QCOMPARE(simple.typeName(), type);
    QCOMPARE(QtSoapType::typeToName(simple.type()), type);
    QCOMPARE(simple.value(), value);
    QCOMPARE(simple.value().userType(), value.userType());
    QDomDocument plain;
    plain.setContent(QStringLiteral("<a>%1</a>").arg(string));
    QCOMPARE(simple.toString(), plain.documentElement().text());
}

void tst_SoapTypes::whatIsNoNumberIsRead()
{
    QtSoapSimpleType simple;
    QVERIFY(simple.parse(element(R"(<a xsi:type="xsd:double">NaN</a>)")));
    QVERIFY(std::isnan(simple.value().toDouble()));
    QCOMPARE(simple.toString(), QString("NaN"));
    QCOMPARE(simple.toInt(), 0);
    QVERIFY(!simple.toBool());
}

void tst_SoapTypes::bothSchemasAreRead_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("read");

    QTest::newRow("1999") << R"(<a xsi:type="xsd:int">3</a>)"
                          << R"(a: int "3")";
    QTest::newRow("2001") << R"(<a xsi1:type="xsd1:int">3</a>)"
                          << R"(a: int "3")";
    QTest::newRow("2001's type by 1999's attribute") << R"(<a xsi:type="xsd1:int">3</a>)"
                                                     << R"(a: int "3")";
    QTest::newRow("1999's type by 2001's attribute") << R"(<a xsi1:type="xsd:int">3</a>)"
                                                     << R"(a: int "3")";
    QTest::newRow("the encoding's types") << R"(<a xsi:type="SOAP-ENC:int">3</a>)"
                                          << R"(a: int "3")";
    QTest::newRow("a prefix of its own")
        << R"(<a xmlns:i="http://www.w3.org/2001/XMLSchema-instance")"
           R"( xmlns:s="http://www.w3.org/2001/XMLSchema" i:type="s:int">3</a>)"
        << R"(a: int "3")";
    QTest::newRow("the default namespace")
        << R"(<a xsi:type="int" xmlns="http://www.w3.org/2001/XMLSchema">3</a>)"
        << R"({http://www.w3.org/2001/XMLSchema}a: int "3")";
    QTest::newRow("white space around the type") << R"(<a xsi:type=" xsd:int ">3</a>)"
                                                 << R"(a: int "3")";
    QTest::newRow("an attribute of no namespace isn't a type") << R"(<a type="xsd:int">3</a>)"
                                                               << R"(a: "3")";
    QTest::newRow("the encoding's element")
        << R"(<SOAP-ENC:int>3</SOAP-ENC:int>)"
        << R"({http://schemas.xmlsoap.org/soap/encoding/}int: int "3")";
}

void tst_SoapTypes::bothSchemasAreRead()
{
    QFETCH(QString, xml);

    const std::unique_ptr<QtSoapType> value(QtSoapTypeFactory::instance().soapType(element(xml)));
    QVERIFY(value);
    QTEST(SoapText::of(*value), "read");
}

void tst_SoapTypes::textThatDoesNotFitIsRefused_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("content");

    const auto row = [](const char* type, const char* content) {
        QTest::newRow(qPrintable(
            QStringLiteral("%1 \"%2\"").arg(QLatin1String(type), QString::fromUtf8(content))))
            << QString::fromLatin1(type) << QString::fromUtf8(content);
    };
    row("int", "2147483648");
    row("int", "-2147483649");
    row("int", "99999999999");
    row("int", "12.0");
    row("int", "twelve");
    row("int", "");
    row("int", "0x10");
    row("int", "1 2");
    row("byte", "128");
    row("byte", "-129");
    row("unsignedByte", "256");
    row("unsignedByte", "-1");
    row("short", "32768");
    row("unsignedShort", "65536");
    row("unsignedInt", "4294967296");
    row("unsignedInt", "-1");
    row("long", "9223372036854775808");
    row("unsignedLong", "18446744073709551616");
    row("negativeInteger", "0");
    row("nonPositiveInteger", "1");
    row("positiveInteger", "0");
    row("nonNegativeInteger", "-1");
    row("integer", "1e3");
    row("boolean", "maybe");
    row("boolean", "TRUE");
    row("boolean", "2");
    row("boolean", "");
    row("double", "1,5");
    row("double", "much");
    row("float", "");
    row("decimal", "1e3");
    row("hexBinary", "ABC");
    row("hexBinary", "XY");
    row("base64Binary", "A?B=");
    row("base64Binary", "YW=I");
    row("base64Binary", "YWJ");
    row("base64Binary", "YQ=");
    row("unsignedLong", "many");
    row("double", "1e");
    row("date", "2013-2-28");
    row("date", "2013-02-30");
    row("date", "2013-02-28x");
    row("date", "2013-02-28+5:00");
    row("date", "0000-02-28");
    row("date", "213-02-28");
    row("time", "13:20:05.");
    row("time", "24:00:01");
    row("time", "25:00:00");
    row("dateTime", "2013-02-28 13:20:05");
    row("dateTime", "2013-02-28T13:20");
    row("gYearMonth", "2013");
    row("gMonthDay", "02-28");
    row("gDay", "-28");
    row("gDay", "--28");
    row("gMonth", "--02-");
    row("duration", "1Y");
    row("duration", "P");
    row("duration", "P1H");
    row("duration", "P1YT");
    row("duration", "PT1Y");
    row("duration", "PT1.S");
    row("duration", "PT1.5M");
    row("duration", "PT1.5");
}

void tst_SoapTypes::textThatDoesNotFitIsRefused()
{
    QFETCH(QString, type);
    QFETCH(QString, content);

    QtSoapSimpleType simple;
    QVERIFY(
        !simple.parse(element(QStringLiteral("<a xsi:type=\"xsd:%1\">%2</a>").arg(type, content))));
    QVERIFY(!simple.isValid());
    QVERIFY(!simple.errorString().isEmpty());
    QVERIFY(!simple.value().isValid());
}

void tst_SoapTypes::aFailureTakesTheFormerContent()
{
    QtSoapSimpleType simple(QtSoapQName("a"), 5);
    QVERIFY(!simple.parse(element(R"(<a xsi:type="xsd:int">many</a>)")));
    QVERIFY(!simple.isValid());
    QCOMPARE(simple.toInt(), 0);
    QVERIFY(!simple.errorString().isEmpty());

    QVERIFY(simple.parse(element(R"(<a xsi:type="xsd:int">6</a>)")));
    QVERIFY(simple.isValid());
    QCOMPARE(simple.toInt(), 6);
    QCOMPARE(simple.errorString(), QString());

    QVERIFY(!simple.parse(QDomNode()));
    QVERIFY(!simple.isValid());
    QVERIFY(!simple.errorString().isEmpty());
}

void tst_SoapTypes::nullValuesAreRead_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<bool>("null");

    QTest::newRow("null of 1999") << R"(<a xsi:type="xsd:int" xsi:null="1"/>)" << true;
    QTest::newRow("nil of 2001") << R"(<a xsi1:type="xsd1:int" xsi1:nil="true"/>)" << true;
    QTest::newRow("nil that is one") << R"(<a xsi1:type="xsd1:int" xsi1:nil="1"/>)" << true;
    QTest::newRow("not null") << R"(<a xsi:type="xsd:int" xsi:null="0">4</a>)" << false;
    QTest::newRow("not nil") << R"(<a xsi1:type="xsd1:int" xsi1:nil="false">4</a>)" << false;
}

void tst_SoapTypes::nullContainersAreRead_data()
{
    QTest::addColumn<QString>("xml");

    QTest::newRow("a struct") << R"(<a xsi:type="SOAP-ENC:Struct" xsi:null="1"/>)";
    QTest::newRow("an array") << R"(<a xsi:type="SOAP-ENC:Array" xsi:null="1"/>)";
    QTest::newRow("an array of a size") << R"(<a SOAP-ENC:arrayType="xsd:int[2]" xsi:null="1"/>)";
}

void tst_SoapTypes::nullContainersAreRead()
{
    QFETCH(QString, xml);

    const std::unique_ptr<QtSoapType> value(QtSoapTypeFactory::instance().soapType(element(xml)));
    QVERIFY(value);
    QVERIFY(value->isValid());
    QVERIFY(!value->value().isValid());
    QCOMPARE(value->count(), 0);
    QCOMPARE(value->type(), QtSoapType::Other);
}

void tst_SoapTypes::nullValuesAreRead()
{
    QFETCH(QString, xml);
    QFETCH(bool, null);

    const std::unique_ptr<QtSoapType> value(QtSoapTypeFactory::instance().soapType(element(xml)));
    QVERIFY(value);
    QVERIFY(value->isValid());
    QCOMPARE(!value->value().isValid(), null);
    QCOMPARE(value->toString(), QString(null ? "" : "4"));
    QCOMPARE(value->type(), QtSoapType::Int);
}

void tst_SoapTypes::simpleValuesAreWritten_data()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<QString>("xml");

    const QtSoapQName name("a");
    QTest::newRow("a number") << Make([=] { return QtSoapSimpleType(name, -42); })
                              << R"(a xsi:type=xsd:int "-42")";
    QTest::newRow("true") << Make([=] { return QtSoapSimpleType(name, true, 0); })
                          << R"(a xsi:type=xsd:boolean "true")";
    QTest::newRow("false") << Make([=] { return QtSoapSimpleType(name, false, 0); })
                           << R"(a xsi:type=xsd:boolean "false")";
    QTest::newRow("a text") << Make([=] { return QtSoapSimpleType(name, QString("Grüße")); })
                            << R"(a xsi:type=xsd:string "Grüße")";
    QTest::newRow("an empty text")
        << Make([=] { return QtSoapSimpleType(name, QString("")); }) << "a xsi:type=xsd:string";
    QTest::newRow("a text of XML's own characters")
        << Make([=] { return QtSoapSimpleType(name, QString("<b c='d' e=\"f\">&amp;]]>")); })
        << R"(a xsi:type=xsd:string "<b c='d' e="f">&amp;]]>")";
    QTest::newRow("a text with space around it")
        << Make([=] { return QtSoapSimpleType(name, QString(" \ta\n ")); })
        << "a xsi:type=xsd:string \" \ta\n \"";
    QTest::newRow("a text beyond the first plane")
        << Make([=] { return QtSoapSimpleType(name, QString::fromUtf8("\U0001F4F7")); })
        << QString::fromUtf8("a xsi:type=xsd:string \"\U0001F4F7\"");
    QTest::newRow("a name of a namespace")
        << Make([] { return QtSoapSimpleType(QtSoapQName("a", "urn:x"), 1); })
        << R"({urn:x}a xsi:type=xsd:int "1")";
    QTest::newRow("no content") << Make([=] { return QtSoapSimpleType(name); }) << "a xsi:null=1";
    QTest::newRow("an id") << Make([=] {
        QtSoapSimpleType value(name, 1);
        value.setId("one");
        return value;
    }) << R"(a id=one xsi:type=xsd:int "1")";
    QTest::newRow("a reference") << Make([=] {
        QtSoapSimpleType value(name);
        value.setHref("#one");
        return value;
    }) << "a href=#one";
}

void tst_SoapTypes::referencesAreWrittenWithoutContent()
{
    QtSoapArray array(QtSoapQName("a"), QtSoapType::Int);
    array.append(number(1));
    array.setHref("#one");
    QCOMPARE(written(array), QString("a href=#one"));

    QtSoapStruct structure(QtSoapQName("s"));
    structure.insert(number(1));
    structure.setHref("#two");
    QCOMPARE(written(structure), QString("s href=#two"));
}

void tst_SoapTypes::simpleValuesAreWritten()
{
    QFETCH(Make, make);

    QTEST(written(make()), "xml");
}

void tst_SoapTypes::readAndWrittenAgain_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("again");

    QTest::newRow("a long") << R"(<a xsi:type="xsd:long">9007199254740993</a>)"
                            << R"(a xsi:type=xsd:long "9007199254740993")";
    QTest::newRow("a type of 2001") << R"(<a xsi1:type="xsd1:short">7</a>)"
                                    << R"(a xsi:type=xsd:short "7")";
    QTest::newRow("a decimal with all its digits")
        << R"(<a xsi:type="xsd:decimal">0.10000000000000000001</a>)"
        << R"(a xsi:type=xsd:decimal "0.10000000000000000001")";
    QTest::newRow("a date with its zone") << R"(<a xsi:type="xsd:date">2013-02-28Z</a>)"
                                          << R"(a xsi:type=xsd:date "2013-02-28Z")";
    QTest::newRow("null") << R"(<a xsi1:type="xsd1:int" xsi1:nil="true"/>)"
                          << "a xsi:null=1 xsi:type=xsd:int";
    QTest::newRow("a struct") << R"(<a><b xsi:type="xsd:int">1</b><c><d>2</d></c></a>)"
                              << R"(a (b xsi:type=xsd:int "1", c (d "2")))";
    QTest::newRow("an array") << R"(<a SOAP-ENC:arrayType="xsd:int[2]"><b>1</b><b>2</b></a>)"
                              << "a enc:arrayType=xsd:int[2] xsi:type=enc:Array "
                                 R"((b xsi:type=xsd:int "1", b xsi:type=xsd:int "2"))";
}

void tst_SoapTypes::readAndWrittenAgain()
{
    QFETCH(QString, xml);

    const std::unique_ptr<QtSoapType> value(QtSoapTypeFactory::instance().soapType(element(xml)));
    QVERIFY(value);
    QTEST(written(*value), "again");
}

void tst_SoapTypes::attributesAreChanged()
{
    QtSoapSimpleType value(QtSoapQName("a"), 5);
    QCOMPARE(value.id(), QString());
    QCOMPARE(value.href(), QString());
    value.setName(QtSoapQName("b", "urn:x"));
    value.setId("one");
    value.setHref("#two");
    QCOMPARE(SoapText::ofName(value.name()), QString("{urn:x}b"));
    QCOMPARE(value.id(), QString("one"));
    QCOMPARE(value.href(), QString("#two"));
}

void tst_SoapTypes::clearLeavesNameAndType()
{
    QtSoapSimpleType value(QtSoapQName("a"), 5);
    value.setId("one");
    value.clear();
    QCOMPARE(value.toString(), QString());
    QVERIFY(!value.value().isValid());
    QCOMPARE(value.id(), QString());
    QCOMPARE(value.name().name(), QString("a"));
    QCOMPARE(value.type(), QtSoapType::Int);

    QtSoapStruct structure(QtSoapQName("s"));
    structure.insert(new Counted("a"));
    structure.clear();
    QCOMPARE(structure.count(), 0);
    QCOMPARE(Counted::living, 0);
    QCOMPARE(structure.name().name(), QString("s"));
}

void tst_SoapTypes::sizesMakeDimensions_data()
{
    QTest::addColumn<QVector<int>>("sizes");
    QTest::addColumn<QString>("xml");

    QTest::newRow("no size") << QVector<int>{-1, -1, -1, -1, -1}
                             << "a enc:arrayType=xsd:int[0] xsi:type=enc:Array";
    QTest::newRow("one") << QVector<int>{3, -1, -1, -1, -1}
                         << "a enc:arrayType=xsd:int[3] xsi:type=enc:Array";
    QTest::newRow("two") << QVector<int>{3, 4, -1, -1, -1}
                         << "a enc:arrayType=xsd:int[3,4] xsi:type=enc:Array";
    QTest::newRow("three") << QVector<int>{3, 4, 5, -1, -1}
                           << "a enc:arrayType=xsd:int[3,4,5] xsi:type=enc:Array";
    QTest::newRow("four") << QVector<int>{3, 4, 5, 6, -1}
                          << "a enc:arrayType=xsd:int[3,4,5,6] xsi:type=enc:Array";
    QTest::newRow("five") << QVector<int>{3, 4, 5, 6, 7}
                          << "a enc:arrayType=xsd:int[3,4,5,6,7] xsi:type=enc:Array";
}

void tst_SoapTypes::sizesMakeDimensions()
{
    QFETCH(QVector<int>, sizes);

    const QtSoapArray array(QtSoapQName("a"), QtSoapType::Int, sizes[0], sizes[1], sizes[2],
                            sizes[3], sizes[4]);
    QCOMPARE(array.type(), QtSoapType::Array);
    QVERIFY(array.isValid());
    QCOMPARE(array.count(), 0);
    QTEST(written(array), "xml");
}

void tst_SoapTypes::membersLieWhereTheyAreInserted_data()
{
    QTest::addColumn<Fill>("fill");
    QTest::addColumn<int>("dimensions");
    QTest::addColumn<QString>("content");
    QTest::addColumn<int>("single");

    QTest::newRow("one dimension") << Fill([](QtSoapArray& a) {
        a.insert(1, number(10));
        a.insert(0, number(11));
    }) << 1 << R"([0: int "11", 1: int "10"])"
                                   << 1;
    QTest::newRow("two dimensions") << Fill([](QtSoapArray& a) {
        a.insert(1, 2, number(10));
        a.insert(0, 3, number(11));
    }) << 2 << R"([0 3: int "11", 1 2: int "10"])"
                                    << 6;
    QTest::newRow("three dimensions") << Fill([](QtSoapArray& a) {
        a.insert(1, 2, 3, number(10));
        a.insert(1, 2, 1, number(11));
    }) << 3 << R"([1 2 1: int "11", 1 2 3: int "10"])"
                                      << 27;
    QTest::newRow("four dimensions") << Fill([](QtSoapArray& a) {
        a.insert(1, 2, 3, 0, number(10));
        a.insert(1, 1, 3, 3, number(11));
    }) << 4 << R"([1 1 3 3: int "11", 1 2 3 0: int "10"])"
                                     << 108;
    QTest::newRow("five dimensions") << Fill([](QtSoapArray& a) {
        a.insert(1, 2, 3, 0, 1, number(10));
        a.insert(0, 3, 3, 3, 3, number(11));
    }) << 5 << R"([0 3 3 3 3: int "11", 1 2 3 0 1: int "10"])"
                                     << 433;
}

void tst_SoapTypes::membersLieWhereTheyAreInserted()
{
    QFETCH(Fill, fill);
    QFETCH(int, dimensions);
    QFETCH(int, single);

    const auto size = [dimensions](int dimension) { return dimension < dimensions ? 4 : -1; };
    QtSoapArray array(QtSoapQName("a"), QtSoapType::Int, size(0), size(1), size(2), size(3),
                      size(4));
    fill(array);
    QTEST(SoapText::ofContent(array), "content");
    QCOMPARE(array.count(), 2);
    const QtSoapArray& constant = array;
    QCOMPARE(array[single].toInt(), 10);
    QCOMPARE(constant[single].toInt(), 10);

    // The same by its positions.
    const int positions[][5] = {{1, -1, -1, -1, -1},
                                {1, 2, -1, -1, -1},
                                {1, 2, 3, -1, -1},
                                {1, 2, 3, 0, -1},
                                {1, 2, 3, 0, 1}};
    const int* p = positions[dimensions - 1];
    QCOMPARE(array.at(p[0], p[1], p[2], p[3], p[4]).toInt(), 10);
    QCOMPARE(constant.at(p[0], p[1], p[2], p[3], p[4]).toInt(), 10);
    QVERIFY(!array.at(p[0] + 1, p[1], p[2], p[3], p[4]).isValid());
}

void tst_SoapTypes::appendingGoesBehindTheLast_data()
{
    QTest::addColumn<Fill>("fill");
    QTest::addColumn<int>("size0");
    QTest::addColumn<int>("size1");
    QTest::addColumn<QString>("content");

    const Fill two = [](QtSoapArray& a) {
        a.append(number(1));
        a.append(number(2));
    };
    QTest::newRow("an empty array") << two << -1 << -1 << R"([0: int "1", 1: int "2"])";
    QTest::newRow("an array that has room") << two << 5 << -1 << R"([0: int "1", 1: int "2"])";
    QTest::newRow("an array that hasn't") << two << 1 << -1 << R"([0: int "1", 1: int "2"])";
    QTest::newRow("a member further on") << Fill([](QtSoapArray& a) {
        a.insert(6, number(1));
        a.append(number(2));
    }) << 3 << -1 << R"([6: int "1", 7: int "2"])";
    QTest::newRow("a member at the end of a row") << Fill([](QtSoapArray& a) {
        a.insert(0, 2, number(1));
        a.append(number(2));
    }) << 2 << 3 << R"([0 2: int "1", 1 0: int "2"])";
}

void tst_SoapTypes::appendingGoesBehindTheLast()
{
    QFETCH(Fill, fill);
    QFETCH(int, size0);
    QFETCH(int, size1);

    QtSoapArray array(QtSoapQName("a"), QtSoapType::Int, size0, size1);
    fill(array);
    QTEST(SoapText::ofContent(array), "content");
}

void tst_SoapTypes::insertingReplaces()
{
    QtSoapArray array(QtSoapQName("a"), QtSoapType::String);
    array.insert(3, new Counted("x", "old"));
    array.insert(3, new Counted("x", "new"));
    QCOMPARE(Counted::living, 1);
    QCOMPARE(array.count(), 1);
    QCOMPARE(array[3].toString(), QString("new"));

    // What is there can be changed in its place.
    array[3].setId("third");
    array.at(3).setName(QtSoapQName("y"));
    QCOMPARE(array[3].id(), QString("third"));
    QCOMPARE(array[3].name().name(), QString("y"));
}

void tst_SoapTypes::badPositionsAreRefused_data()
{
    QTest::addColumn<Fill>("fill");

    QTest::newRow("a negative position")
        << Fill([](QtSoapArray& a) { a.insert(-1, 0, new Counted("a")); });
    QTest::newRow("a negative position behind")
        << Fill([](QtSoapArray& a) { a.insert(0, -1, new Counted("a")); });
    QTest::newRow("too many positions")
        << Fill([](QtSoapArray& a) { a.insert(0, 0, 0, new Counted("a")); });
    QTest::newRow("five positions")
        << Fill([](QtSoapArray& a) { a.insert(0, 0, 0, 0, 0, new Counted("a")); });
    QTest::newRow("the largest number there is") << Fill(
        [](QtSoapArray& a) { a.insert(std::numeric_limits<int>::max(), 0, new Counted("a")); });
}

void tst_SoapTypes::badPositionsAreRefused()
{
    QFETCH(Fill, fill);

    QtSoapArray array(QtSoapQName("a"), QtSoapType::String, 2, 2);
    fill(array);
    QCOMPARE(Counted::living, 0);
    QCOMPARE(array.count(), 0);
    QVERIFY(!array.errorString().isEmpty());
}

void tst_SoapTypes::tooFewPositionsAreRefused()
{
    QtSoapArray array(QtSoapQName("a"), QtSoapType::Int, 2, 2, 2);
    array.insert(1, 1, 0, number(1));
    array.insert(1, 1, new Counted("a"));
    QVERIFY(!array.errorString().isEmpty());
    QVERIFY(!array.at(1, 1).isValid());
    QCOMPARE(SoapText::ofContent(array), QString(R"([1 1 0: int "1"])"));
}

void tst_SoapTypes::arraysAreWritten_data()
{
    QTest::addColumn<Fill>("fill");
    QTest::addColumn<int>("size0");
    QTest::addColumn<int>("size1");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("xml");

    QTest::newRow("numbers") << Fill([](QtSoapArray& a) {
        a.append(number(3));
        a.append(number(4));
    }) << -1 << -1 << int(QtSoapType::Int)
                             << "a enc:arrayType=xsd:int[2] xsi:type=enc:Array "
                                R"((number xsi:type=xsd:int "3", number xsi:type=xsd:int "4"))";
    QTest::newRow("members of several types")
        << Fill([](QtSoapArray& a) {
               a.append(number(3));
               a.append(text("word", "four"));
           })
        << -1 << -1 << int(QtSoapType::Other)
        << "a enc:arrayType=xsd:ur-type[2] xsi:type=enc:Array "
           R"((number xsi:type=xsd:int "3", )"
           R"(word xsi:type=xsd:string "four"))";
    QTest::newRow("two full rows")
        << Fill([](QtSoapArray& a) {
               for (int i = 0; i < 4; ++i)
                   a.append(number(i));
           })
        << 2 << 2 << int(QtSoapType::Int)
        << "a enc:arrayType=xsd:int[2,2] xsi:type=enc:Array "
           R"((number xsi:type=xsd:int "0", number xsi:type=xsd:int "1", )"
           R"(number xsi:type=xsd:int "2", number xsi:type=xsd:int "3"))";
}

void tst_SoapTypes::arraysAreWritten()
{
    QFETCH(Fill, fill);
    QFETCH(int, size0);
    QFETCH(int, size1);
    QFETCH(int, type);

    QtSoapArray array(QtSoapQName("a"), QtSoapType::Type(type), size0, size1);
    fill(array);
    QTEST(written(array), "xml");
}

void tst_SoapTypes::aLargeSizeTakesNoMemory()
{
    const int most = std::numeric_limits<int>::max();
    QtSoapArray array(QtSoapQName("a"), QtSoapType::Int, most, most, most, most, most);
    array.insert(most - 1, most - 1, most - 1, most - 1, most - 1, number(1));
    array.insert(0, 0, 0, 0, most - 1, number(2));
    QCOMPARE(array.count(), 2);
    QCOMPARE(array.at(most - 1, most - 1, most - 1, most - 1, most - 1).toInt(), 1);
    QCOMPARE(array.at(0, 0, 0, 0, most - 1).toInt(), 2);
    QVERIFY(!array.at(0, 0, 0, 0, 0).isValid());
    QCOMPARE(SoapText::ofContent(array),
             QString("[0 0 0 0 2147483646: int \"2\", 2147483646 2147483646 2147483646 2147483646 "
                     "2147483646: int \"1\"]"));
    QCOMPARE(QtSoapArrayIterator(array).pos(), most - 1);
    QtSoapArrayIterator last(array);
    ++last;
    QCOMPARE(last.pos(), -1); // more than an int holds
}

void tst_SoapTypes::nothingGoesBehindTheLastPosition()
{
    const int most = std::numeric_limits<int>::max();
    QtSoapArray array(QtSoapQName("a"), QtSoapType::Int, 2, 2);
    array.insert(most - 1, 1, number(1));
    array.append(new Counted("a"));
    QCOMPARE(Counted::living, 0);
    QCOMPARE(array.errorString(), QString("There is no such position in the array"));
    QCOMPARE(SoapText::ofContent(array), QString(R"([2147483646 1: int "1"])"));
}

void tst_SoapTypes::anArrayIsReadIntoAnother()
{
    QtSoapArray array(QtSoapQName("former"), QtSoapType::String, 3);
    array.append(new Counted("former"));
    QVERIFY(array.parse(element(R"(<a SOAP-ENC:arrayType="xsd:int[2,1]"><i>1</i><i>2</i></a>)")));
    QCOMPARE(Counted::living, 0);
    QCOMPARE(SoapText::of(array), QString(R"(a: [0 0: int "1", 1 0: int "2"])"));

    QVERIFY(!array.parse(element(R"(<a SOAP-ENC:arrayType="xsd:int[1]"><i>one</i></a>)")));
    QVERIFY(!array.isValid());
    QCOMPARE(array.count(), 0);
    QVERIFY(!array.errorString().isEmpty());
}

void tst_SoapTypes::anArrayIsWalked()
{
    QtSoapArray array(QtSoapQName("a"), QtSoapType::Int);
    array.insert(9, number(1));
    array.insert(2, number(2));

    QtSoapArrayIterator i(array);
    QCOMPARE(i.pos(), 2);
    QCOMPARE(i.data(), &array[2]);
    QCOMPARE(i.current(), &array[2]);
    const QtSoapArrayIterator& constant = i;
    QCOMPARE(constant.data(), &array[2]);
    QCOMPARE(constant.current(), &array[2]);
    QVERIFY(!i.atEnd());

    QtSoapArrayIterator second(i);
    QVERIFY(second == i);
    QVERIFY(!(second != i));
    QVERIFY(&++second == &second);
    QVERIFY(second != i);
    QVERIFY(!(second == i));
    QCOMPARE(second.pos(), 9);
    QCOMPARE(second.data(), &array[9]);
    i = second;
    QVERIFY(i == second);
    QCOMPARE(i.pos(), 9);
}

void tst_SoapTypes::anArrayIsWalkedByDimension()
{
    QtSoapArray array(QtSoapQName("a"), QtSoapType::Int, 3, 3, 3);
    array.insert(1, 2, 0, number(1));
    const QtSoapArrayIterator i(array);
    QCOMPARE(i.pos(), 15);
    int positions[] = {7, 7, 7, 7, 7};
    i.pos(positions, positions + 1, positions + 2, positions + 3, positions + 4);
    QCOMPARE(positions[0], 1);
    QCOMPARE(positions[1], 2);
    QCOMPARE(positions[2], 0);
    QCOMPARE(positions[3], -1);
    QCOMPARE(positions[4], -1);

    // Whoever wants fewer of them gets those.
    int last = 7;
    i.pos(nullptr, nullptr, &last);
    QCOMPARE(last, 0);
    int first = 7;
    i.pos(&first);
    QCOMPARE(first, 1);
}

void tst_SoapTypes::theEndOfAnArray()
{
    QtSoapArray array;
    array.append(number(1));
    QtSoapArrayIterator i(array);
    ++i;
    for (int times = 0; times < 2; ++times) {
        QVERIFY(i.atEnd());
        QVERIFY(!i.data());
        QVERIFY(!i.current());
        QCOMPARE(i.pos(), -1);
        int position = 7;
        i.pos(&position);
        QCOMPARE(position, -1);
        ++i;
    }
    QtSoapArray empty;
    QVERIFY(QtSoapArrayIterator(empty).atEnd());
    QtSoapArray other(array);
    QVERIFY(QtSoapArrayIterator(other) != QtSoapArrayIterator(array));
}

void tst_SoapTypes::clearingAnArrayKeepsItsSizes()
{
    QtSoapArray array(QtSoapQName("a"), QtSoapType::Int, 2, 2);
    array.insert(1, 1, new Counted("a"));
    array.clear();
    QCOMPARE(Counted::living, 0);
    QCOMPARE(array.count(), 0);
    QCOMPARE(written(array), QString("a enc:arrayType=xsd:int[2,2] xsi:type=enc:Array"));
}

void tst_SoapTypes::membersAreFound()
{
    QtSoapStruct structure(QtSoapQName("s"));
    structure.insert(new QtSoapSimpleType(QtSoapQName("a", "urn:x"), 1));
    structure.insert(new QtSoapSimpleType(QtSoapQName("b"), 2));
    const QtSoapStruct& constant = structure;

    QCOMPARE(structure.type(), QtSoapType::Struct);
    QVERIFY(structure.isValid());
    QCOMPARE(structure.count(), 2);
    QCOMPARE(structure[0].toInt(), 1);
    QCOMPARE(constant[1].toInt(), 2);
    QCOMPARE(structure[QtSoapQName("a", "urn:x")].toInt(), 1);
    QCOMPARE(constant[QtSoapQName("a", "urn:x")].toInt(), 1);
    QCOMPARE(structure.at(QtSoapQName("a", "urn:x")).toInt(), 1);
    QCOMPARE(constant.at(QtSoapQName("b")).toInt(), 2);
    QCOMPARE(structure["b"].toInt(), 2);
    QCOMPARE(constant["b"].toInt(), 2);

    QVERIFY(!structure.at(QtSoapQName("a")).isValid());
    QVERIFY(!constant.at(QtSoapQName("b", "urn:x")).isValid());
    QVERIFY(!structure[2].isValid());
    QVERIFY(!constant[-1].isValid());
    QVERIFY(!structure["c"].isValid());

    // Through the base class, as members of members are looked at.
    QtSoapType& base = structure;
    QCOMPARE(base["b"].toInt(), 2);
    QCOMPARE(base[0].toInt(), 1);
    QCOMPARE(base[QtSoapQName("b")].toInt(), 2);
    QCOMPARE(base.count(), 2);
}

void tst_SoapTypes::aPlainNameFindsAnyNamespace()
{
    QtSoapStruct structure;
    structure.insert(new QtSoapSimpleType(QtSoapQName("a", "urn:x"), 1));
    structure.insert(new QtSoapSimpleType(QtSoapQName("a", "urn:y"), 2));
    QCOMPARE(structure["a"].toInt(), 1);
    structure.insert(new QtSoapSimpleType(QtSoapQName("a"), 3));
    QCOMPARE(structure["a"].toInt(), 3);
    QCOMPARE(structure[QtSoapQName("a", "urn:y")].toInt(), 2);
}

void tst_SoapTypes::membersKeepTheirOrder()
{
    QtSoapStruct structure(QtSoapQName("s"));
    for (const char* name : {"z", "a", "m", "b"})
        structure.insert(text(name, name));
    QCOMPARE(SoapText::of(structure),
             QString(R"(s: {z: string "z", a: string "a", m: string "m", b: string "b"})"));
}

void tst_SoapTypes::aMemberReplacesItsNamesake()
{
    QtSoapStruct structure(QtSoapQName("s"));
    structure.insert(new Counted("a", "old"));
    structure.insert(new Counted("b", "other"));
    structure.insert(new Counted("a", "new"));
    QCOMPARE(Counted::living, 2);
    QCOMPARE(SoapText::of(structure), QString(R"(s: {a: string "new", b: string "other"})"));
}

void tst_SoapTypes::aLargeStructIsSearched()
{
    QtSoapStruct structure(QtSoapQName("s"));
    for (int i = 0; i < 40; ++i) {
        structure.insert(
            new QtSoapSimpleType(QtSoapQName(QStringLiteral("m%1").arg(i), "urn:x"), i));
    }
    structure.insert(new QtSoapSimpleType(QtSoapQName("m5"), 105));
    structure.insert(new QtSoapSimpleType(QtSoapQName("m7", "urn:y"), 107));
    structure.insert(new QtSoapSimpleType(QtSoapQName("m9", "urn:x"), 109));

    QCOMPARE(structure.count(), 42);
    QCOMPARE(structure[QtSoapQName("m0", "urn:x")].toInt(), 0);
    QCOMPARE(structure[QtSoapQName("m39", "urn:x")].toInt(), 39);
    QCOMPARE(structure.at(QtSoapQName("m7", "urn:y")).toInt(), 107);
    QCOMPARE(structure[QtSoapQName("m9", "urn:x")].toInt(), 109);
    QCOMPARE(structure["m39"].toInt(), 39);
    QCOMPARE(structure["m5"].toInt(), 105);
    QCOMPARE(structure["m7"].toInt(), 7);
    QVERIFY(!structure[QtSoapQName("m1")].isValid());
    QVERIFY(!structure["m40"].isValid());
}

void tst_SoapTypes::aStructIsWalked()
{
    QtSoapStruct structure;
    structure.insert(new QtSoapSimpleType(QtSoapQName("b", "urn:x"), 1));
    structure.insert(number(2));

    QtSoapStructIterator i(structure);
    QCOMPARE(SoapText::ofName(i.key()), QString("{urn:x}b"));
    QCOMPARE(i.data(), &structure[0]);
    QCOMPARE(i.current(), &structure[0]);
    const QtSoapStructIterator& constant = i;
    QCOMPARE(constant.data(), &structure[0]);
    QCOMPARE(constant.current(), &structure[0]);

    QtSoapStructIterator second(i);
    QVERIFY(second == i);
    QVERIFY(!(second != i));
    QVERIFY(&++second == &second);
    QVERIFY(second != i);
    QVERIFY(!(second == i));
    QCOMPARE(second.key().name(), QString("number"));
    i = second;
    QVERIFY(i == second);
    QCOMPARE(i.data(), &structure[1]);

    for (int times = 0; times < 2; ++times) {
        ++i;
        QVERIFY(!i.data());
        QVERIFY(!i.current());
        QCOMPARE(i.key().name(), QString());
    }
    QtSoapStruct empty;
    QVERIFY(!QtSoapStructIterator(empty).data());
    QtSoapStruct other(structure);
    QVERIFY(QtSoapStructIterator(structure) != QtSoapStructIterator(empty));
    QVERIFY(QtSoapStructIterator(other) != QtSoapStructIterator(structure));
}

void tst_SoapTypes::structsAreWritten()
{
    auto* inner = new QtSoapStruct(QtSoapQName("inner", "urn:y"));
    inner->insert(text("a", "1"));
    QtSoapStruct structure(QtSoapQName("s", "urn:x"));
    structure.insert(inner);
    structure.insert(number(2));
    QCOMPARE(written(structure),
             QString(R"({urn:x}s ({urn:y}inner (a xsi:type=xsd:string "1"), )"
                     R"(number xsi:type=xsd:int "2"))"));
}

void tst_SoapTypes::structsAreRead()
{
    QtSoapStruct structure(QtSoapQName("former"));
    structure.insert(new Counted("former"));
    QVERIFY(structure.parse(element(R"(<x:s xmlns:x="urn:x"> <a>1</a> <!-- none --> <b><c/></b>
        <a>2</a> </x:s>)")));
    QCOMPARE(Counted::living, 0);
    QCOMPARE(SoapText::of(structure), QString(R"({urn:x}s: {a: "1", b: {c: ""}, a: "2"})"));
    QCOMPARE(structure["a"].toString(), QString("1"));
    QCOMPARE(structure[2].toString(), QString("2"));
    QCOMPARE(structure.toString(), QString());
}

void tst_SoapTypes::textBetweenMembersIsKept()
{
    QtSoapStruct structure;
    QVERIFY(structure.parse(element("<p>Press <b>Enter</b> now</p>")));
    QCOMPARE(structure["b"].toString(), QString("Enter"));
    QVERIFY(structure.toString().contains("Press"));
    QVERIFY(structure.toString().contains("now"));
}

void tst_SoapTypes::nothingIsFound_data()
{
    QTest::addColumn<Find>("find");

    // Objects that outlive the table.
    static QtSoapSimpleType simple(QtSoapQName("a"), 1);
    static QtSoapStruct structure;
    static QtSoapArray array(QtSoapQName("a"), QtSoapType::Int, 2, 2);
    static const QtSoapSimpleType constantSimple(QtSoapQName("a"), 1);
    static const QtSoapStruct constantStructure;
    static const QtSoapArray constantArray(QtSoapQName("a"), QtSoapType::Int, 2, 2);
    static const QtSoapArray withoutColumns(QtSoapQName("a"), QtSoapType::Int, 2, 0);
    static const QtSoapMessage message;

    const auto row = [](const char* name, const Find& find) { QTest::newRow(name) << find; };
    row(
        "by position in a simple value", []() -> auto& { return simple[0]; });
    row(
        "by name in a simple value", []() -> auto& { return simple["a"]; });
    row(
        "by qualified name in a simple value", []() -> auto& { return simple[QtSoapQName("a")]; });
    row(
        "by position in a struct", []() -> auto& { return structure[0]; });
    row(
        "by a negative position in a struct", []() -> auto& { return structure[-1]; });
    row(
        "by name in a struct", []() -> auto& { return structure["a"]; });
    row(
        "by qualified name in a struct", []() -> auto& { return structure[QtSoapQName("a")]; });
    row(
        "at a name in a struct", []() -> auto& { return structure.at(QtSoapQName("a")); });
    row(
        "by position in an array", []() -> auto& { return array[0]; });
    row(
        "by a negative position in an array", []() -> auto& { return array[-1]; });
    row(
        "by a position behind an array", []() -> auto& { return array[4]; });
    row(
        "by name in an array", []() -> auto& { return array["a"]; });
    row(
        "by qualified name in an array", []() -> auto& { return array[QtSoapQName("a")]; });
    row(
        "at positions in an array", []() -> auto& { return array.at(1, 1); });
    row(
        "at negative positions in an array", []() -> auto& { return array.at(-2, -2); });
    row(
        "at too many positions in an array", []() -> auto& { return array.at(0, 0, 0, 0, 0); });
    row(
        "in a simple constant", []() -> auto& { return constantSimple[0]; });
    row(
        "by name in a simple constant", []() -> auto& { return constantSimple["a"]; });
    row(
        "by qualified name in a simple constant",
        []() -> auto& { return constantSimple[QtSoapQName("a")]; });
    row(
        "in a constant struct", []() -> auto& { return constantStructure[0]; });
    row(
        "by name in a constant struct", []() -> auto& { return constantStructure["a"]; });
    row(
        "at a name in a constant struct",
        []() -> auto& { return constantStructure.at(QtSoapQName("a")); });
    row(
        "in a constant array", []() -> auto& { return constantArray[0]; });
    row(
        "at positions in a constant array", []() -> auto& { return constantArray.at(0, 0); });
    row(
        "by position in an array whose rows are empty",
        []() -> auto& { return withoutColumns[1]; });
    row(
        "further and further", []() -> auto& { return structure["a"][1]["b"][QtSoapQName("c")]; });
    row(
        "the method of no message", []() -> auto& { return message.method(); });
    row(
        "the result of no message", []() -> auto& { return message.returnValue()["a"]; });
    row(
        "the fault of no message", []() -> auto& { return message.faultString(); });
    row(
        "the details of no fault", []() -> auto& { return message.faultDetail()[0]; });
}

void tst_SoapTypes::nothingIsFound()
{
    QFETCH(Find, find);

    const QtSoapType& found = find();
    QVERIFY(!found.isValid());
    QCOMPARE(found.count(), 0);
    QCOMPARE(found.toString(), QString());
    QCOMPARE(found.toInt(), 0);
    QVERIFY(!found.toBool());
    QVERIFY(!found.value().isValid());
    QCOMPARE(found.name().name(), QString());
    QCOMPARE(found.type(), QtSoapType::Other);
}

void tst_SoapTypes::whatIsNotThereCannotBeChanged()
{
    QtSoapStruct structure;
    structure["a"].setName(QtSoapQName("b"));
    structure["a"].setId("one");
    structure["a"].setHref("#one");
    structure["a"].parse(element(R"(<a xsi:type="xsd:int">3</a>)"));
    structure["a"].clear();
    structure["a"] = QtSoapType(QtSoapQName("c"), QtSoapType::Int);

    QtSoapArray array;
    QVERIFY(!array[5].isValid());
    QCOMPARE(array[5].name().name(), QString());
    QCOMPARE(array[5].id(), QString());
    QCOMPARE(array[5].href(), QString());
    QCOMPARE(array[5].type(), QtSoapType::Other);
    QCOMPARE(structure.count(), 0);
    QCOMPARE(array.count(), 0);
}

void tst_SoapTypes::containersReleaseTheirMembers_data()
{
    QTest::addColumn<Use>("use");

    QTest::newRow("an array") << Use([] {
        QtSoapArray array;
        array.append(new Counted("a"));
        array.insert(4, new Counted("a"));
        QCOMPARE(Counted::living, 2);
    });
    QTest::newRow("a struct") << Use([] {
        QtSoapStruct structure;
        structure.insert(new Counted("a"));
        structure.insert(new Counted("b"));
        QCOMPARE(Counted::living, 2);
    });
    QTest::newRow("a struct in an array in a struct") << Use([] {
        auto* inner = new QtSoapStruct;
        inner->insert(new Counted("a"));
        auto* middle = new QtSoapArray;
        middle->append(inner);
        QtSoapStruct outer;
        outer.insert(middle);
        QCOMPARE(Counted::living, 1);
    });
    QTest::newRow("a message") << Use([] {
        QtSoapMessage message;
        message.setMethod("m");
        message.addMethodArgument(new Counted("a"));
        message.addHeaderItem(new Counted("h"));
        QCOMPARE(Counted::living, 2);
    });
    QTest::newRow("a message of one item") << Use([] {
        QtSoapMessage message;
        message.addBodyItem(new Counted("a"));
        QCOMPARE(Counted::living, 1);
    });
    QTest::newRow("a message that is cleared") << Use([] {
        QtSoapMessage message;
        message.setMethod("m");
        message.addMethodArgument(new Counted("a"));
        message.addHeaderItem(new Counted("h"));
        message.clear();
        QCOMPARE(Counted::living, 0);
    });
    QTest::newRow("a message that becomes another") << Use([] {
        QtSoapMessage message;
        message.setMethod("m");
        message.addMethodArgument(new Counted("a"));
        message = QtSoapMessage();
        QCOMPARE(Counted::living, 0);
    });
    QTest::newRow("a fault") << Use([] {
        QtSoapMessage message;
        message.setFaultCode(QtSoapMessage::Client);
        message.addFaultDetail(new Counted("a"));
        QCOMPARE(Counted::living, 1);
    });
    QTest::newRow("an argument without a method") << Use([] {
        QtSoapMessage message;
        message.addMethodArgument(new Counted("a"));
        QCOMPARE(Counted::living, 1);
    });
    QTest::newRow("a message that reads") << Use([] {
        QtSoapMessage message;
        message.setMethod("m");
        message.addMethodArgument(new Counted("a"));
        message.setContent("not XML");
        QCOMPARE(Counted::living, 0);
    });
}

void tst_SoapTypes::containersReleaseTheirMembers()
{
    QFETCH(Use, use);

    use();
    QCOMPARE(Counted::living, 0);
}

void tst_SoapTypes::copiesShareTheirMembers()
{
    auto original = std::make_unique<QtSoapStruct>(QtSoapQName("s"));
    original->insert(new Counted("a", "1"));
    auto* array = new QtSoapArray(QtSoapQName("b"));
    array->append(new Counted("c", "2"));
    original->insert(array);
    const QtSoapStruct copy(*original);
    QtSoapStruct assigned;
    assigned.insert(new Counted("gone"));
    assigned = *original;
    original.reset();
    QCOMPARE(SoapText::of(copy), QString(R"(s: {a: string "1", b: [0: string "2"]})"));
    QCOMPARE(SoapText::of(assigned), QString(R"(s: {a: string "1", b: [0: string "2"]})"));
    QCOMPARE(&copy["a"], &assigned["a"]);

    const QtSoapStruct& itself = assigned;
    assigned = itself;
    QCOMPARE(SoapText::of(assigned), QString(R"(s: {a: string "1", b: [0: string "2"]})"));
}

void tst_SoapTypes::copiesOfArrays()
{
    auto original = std::make_unique<QtSoapArray>(QtSoapQName("a"), QtSoapType::String, 2, 2);
    original->insert(1, 0, new Counted("b", "1"));
    QtSoapArray assigned;
    assigned.append(new Counted("gone"));
    assigned = *original;
    original.reset();
    QCOMPARE(Counted::living, 1);
    QCOMPARE(SoapText::of(assigned), QString(R"(a: [1 0: string "1"])"));
    QCOMPARE(assigned[2].toString(), QString("1"));

    const QtSoapArray& itself = assigned;
    assigned = itself;
    QCOMPARE(SoapText::of(assigned), QString(R"(a: [1 0: string "1"])"));

    // One of its members, which nobody else owns.
    auto* inner = new QtSoapArray(QtSoapQName("inner"));
    inner->append(new Counted("c", "2"));
    QtSoapArray outer(QtSoapQName("outer"));
    outer.append(inner);
    outer = *inner;
    QCOMPARE(SoapText::of(outer), QString(R"(inner: [0: string "2"])"));
}

void tst_SoapTypes::addingToACopyLeavesTheOriginal_data()
{
    QTest::addColumn<bool>("toTheCopy");

    QTest::newRow("to the copy") << true;
    QTest::newRow("to the original") << false;
}

void tst_SoapTypes::addingToACopyLeavesTheOriginal()
{
    QFETCH(bool, toTheCopy);

    QtSoapStruct structure;
    structure.insert(number(1));
    QtSoapStruct copiedStructure(structure);
    (toTheCopy ? copiedStructure : structure).insert(text("a", "2"));
    QCOMPARE(structure.count(), toTheCopy ? 1 : 2);
    QCOMPARE(copiedStructure.count(), toTheCopy ? 2 : 1);

    QtSoapArray array;
    array.append(number(1));
    QtSoapArray copiedArray(array);
    (toTheCopy ? copiedArray : array).append(number(2));
    QCOMPARE(array.count(), toTheCopy ? 1 : 2);
    QCOMPARE(copiedArray.count(), toTheCopy ? 2 : 1);

    QtSoapMessage message;
    message.setMethod("m");
    QtSoapMessage copiedMessage(message);
    (toTheCopy ? copiedMessage : message).addMethodArgument("a", QString(), 1);
    QCOMPARE(message.method().count(), toTheCopy ? 0 : 1);
    QCOMPARE(copiedMessage.method().count(), toTheCopy ? 1 : 0);
}

void tst_SoapTypes::oneObjectInTwoContainers()
{
    auto* shared = new Counted("a", "1");
    QtSoapArray array;
    array.append(shared);
    {
        QtSoapStruct structure;
        structure.insert(shared);
    }
    QCOMPARE(Counted::living, 1);
    QCOMPARE(array[0].toString(), QString("1"));
    array.clear();
    QCOMPARE(Counted::living, 0);
}

void tst_SoapTypes::oneObjectTwice()
{
    auto* twice = new Counted("a", "1");
    QtSoapArray array;
    array.append(twice);
    array.append(twice);
    array.insert(0, twice);
    QCOMPARE(Counted::living, 1);
    QCOMPARE(SoapText::ofContent(array), QString(R"([0: string "1", 1: string "1"])"));
    array.insert(0, number(2));
    array.insert(1, number(2));
    QCOMPARE(Counted::living, 0);

    QtSoapStruct structure;
    auto* again = new Counted("a", "1");
    structure.insert(again);
    structure.insert(again);
    QCOMPARE(Counted::living, 1);
    QCOMPARE(structure.count(), 1);
    QCOMPARE(structure["a"].toString(), QString("1"));
}

void tst_SoapTypes::nothingIsInserted()
{
    QtSoapArray array;
    array.append(nullptr);
    array.insert(0, nullptr);
    array.insert(0, 0, nullptr);
    QCOMPARE(array.count(), 0);

    QtSoapStruct structure;
    structure.insert(nullptr);
    QCOMPARE(structure.count(), 0);

    QtSoapMessage message;
    message.addBodyItem(nullptr);
    message.addHeaderItem(nullptr);
    message.addMethodArgument(nullptr);
    QVERIFY(!message.method().isValid() || message.method().count() == 0);
    message.addFaultDetail(nullptr);
    QCOMPARE(message.faultDetail().count(), 0);
}

void tst_SoapTypes::aContainerRefusesItself_data()
{
    QTest::addColumn<Use>("use");

    QTest::newRow("an array") << Use([] {
        auto* array = new QtSoapArray;
        QtSoapStruct owner;
        owner.insert(array);
        array->append(new Counted("a"));
        array->append(array);
        QCOMPARE(array->count(), 1);
        QVERIFY(!array->errorString().isEmpty());
        array->insert(0, array);
        QCOMPARE((*array)[0].name().name(), QString("a"));
    });
    QTest::newRow("a struct") << Use([] {
        auto* structure = new QtSoapStruct;
        QtSoapArray owner;
        owner.append(structure);
        structure->insert(structure);
        QCOMPARE(structure->count(), 0);
        QVERIFY(!structure->errorString().isEmpty());
    });
    QTest::newRow("a struct that it lies in") << Use([] {
        auto* outer = new QtSoapStruct(QtSoapQName("outer"));
        QtSoapArray owner;
        owner.append(outer);
        auto* inner = new QtSoapArray(QtSoapQName("inner"));
        outer->insert(inner);
        inner->append(outer);
        QCOMPARE(inner->count(), 0);
        inner->append(new Counted("a"));
        QCOMPARE(SoapText::of(*outer), QString("outer: {inner: [0: string \"\"]}"));
    });
    QTest::newRow("an array that it lies in") << Use([] {
        auto* outer = new QtSoapArray(QtSoapQName("outer"));
        QtSoapArray owner;
        owner.append(outer);
        auto* inner = new QtSoapStruct(QtSoapQName("inner"));
        outer->append(inner);
        inner->insert(outer);
        QCOMPARE(inner->count(), 0);
        inner->insert(new Counted("a"));
        QCOMPARE(SoapText::of(*outer), QString("outer: [0: {a: string \"\"}]"));
    });
}

void tst_SoapTypes::aContainerRefusesItself()
{
    QFETCH(Use, use);

    use();
    QCOMPARE(Counted::living, 0);
}

void tst_SoapTypes::iteratorsKeepTheMembers()
{
    auto structure = std::make_unique<QtSoapStruct>();
    structure->insert(new Counted("a", "1"));
    auto array = std::make_unique<QtSoapArray>();
    array->append(new Counted("a", "2"));
    QtSoapStructIterator inStructure(*structure);
    QtSoapArrayIterator inArray(*array);
    structure->insert(new Counted("b"));
    structure->clear();
    array->insert(0, new Counted("a", "3"));
    structure.reset();
    array.reset();
    QCOMPARE(Counted::living, 2);
    QCOMPARE(inStructure.data()->toString(), QString("1"));
    QCOMPARE(inArray.data()->toString(), QString("2"));
    ++inStructure;
    ++inArray;
    QVERIFY(!inStructure.data());
    QVERIFY(inArray.atEnd());
}

void tst_SoapTypes::copiesOfSimpleValues()
{
    QtSoapSimpleType original(QtSoapQName("a", "urn:x"), 5);
    original.setId("one");
    QtSoapSimpleType copy(original);
    original.setName(QtSoapQName("b"));
    original.setId("two");
    original.clear();
    QCOMPARE(SoapText::of(copy), QString(R"({urn:x}a: int "5")"));
    QCOMPARE(copy.id(), QString("one"));

    QtSoapSimpleType assigned(QtSoapQName("c"), QString("text"));
    assigned = copy;
    copy.clear();
    QCOMPARE(SoapText::of(assigned), QString(R"({urn:x}a: int "5")"));
    const QtSoapSimpleType& itself = assigned;
    assigned = itself;
    QCOMPARE(SoapText::of(assigned), QString(R"({urn:x}a: int "5")"));
}

void tst_SoapTypes::referencesAreFollowed_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("read");

    QTest::newRow("to a string") << R"(<a><b href="#1"/><c id="1">text</c></a>)"
                                 << R"(a: {b: "text", c: "text"})";
    QTest::newRow("to one before") << R"(<a><c id="1">text</c><b href="#1"/></a>)"
                                   << R"(a: {c: "text", b: "text"})";
    QTest::newRow("twice to the same")
        << R"(<a><b href="#1"/><c href="#1"/><d id="1" xsi:type="xsd:int">3</d></a>)"
        << R"(a: {b: int "3", c: int "3", d: int "3"})";
    QTest::newRow("to a reference")
        << R"(<a><b href="#1"/><c id="1" href="#2"/><d id="2">text</d></a>)"
        << R"(a: {b: "text", c: "text", d: "text"})";
    QTest::newRow("to a struct") << R"(<a><b href="#1"/><c id="1"><d>text</d></c></a>)"
                                 << R"(a: {b: {d: "text"}, c: {d: "text"}})";
}

void tst_SoapTypes::referencesAreFollowed()
{
    QFETCH(QString, xml);

    const std::unique_ptr<QtSoapType> value(QtSoapTypeFactory::instance().soapType(element(xml)));
    QVERIFY(value);
    QTEST(SoapText::of(*value), "read");
    QVERIFY((*value)["b"].href().isEmpty());
}

void tst_SoapTypes::referencesThatLeadNowhere_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("href");

    QTest::newRow("to what isn't there") << R"(<a><b href="#9"/><c id="1">text</c></a>)"
                                         << "#9";
    QTest::newRow("to itself") << R"(<a><b id="1" href="#1"/></a>)"
                               << "#1";
    QTest::newRow("to what it lies in") << R"(<a id="1"><b href="#1"/></a>)"
                                        << "#1";
    QTest::newRow("to another document") << R"(<a><b href="http://127.0.0.1/x#1"/></a>)"
                                         << "http://127.0.0.1/x#1";
}

void tst_SoapTypes::referencesThatLeadNowhere()
{
    QFETCH(QString, xml);

    const std::unique_ptr<QtSoapType> value(QtSoapTypeFactory::instance().soapType(element(xml)));
    QVERIFY(value);
    const QtSoapType& member = (*value)["b"];
    QVERIFY(!member.isValid());
    QCOMPARE(member.name().name(), QString("b"));
    QTEST(member.href(), "href");
}

void tst_SoapTypes::referencesLeadOutOfTheElement_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("read");

    // The element <s> is read, wherever it lies.
    QTest::newRow("to one behind it") << R"(<a><s><b href="#1"/></s><c id="1">text</c></a>)"
                                      << R"(s: {b: "text"})";
    QTest::newRow("to one before it, behind a text")
        << R"(<a>a text <c id="1">text</c><s><b href="#1"/></s></a>)"
        << R"(s: {b: "text"})";
    QTest::newRow("within it and out of it")
        << R"(<a><c id="1">one</c><s><b href="#1"/><d href="#2"/><e id="2">two</e></s></a>)"
        << R"(s: {b: "one", d: "two", e: "two"})";
    QTest::newRow("from the element itself")
        << R"(<a><s href="#1"/><c id="1"><b xsi:type="xsd:int">3</b></c></a>)"
        << R"(s: {b: int "3"})";
}

void tst_SoapTypes::referencesLeadOutOfTheElement()
{
    QFETCH(QString, xml);

    QtSoapStruct structure;
    QVERIFY2(structure.parse(element(xml).firstChildElement("s")),
             qPrintable(structure.errorString()));
    QTEST(SoapText::of(structure), "read");
    QCOMPARE(structure.id(), QString());
    QCOMPARE(structure.href(), QString());
}

void tst_SoapTypes::referencesDoNotLeadIntoADocumentThatOneIsNotIn()
{
    QDomDocument document;
    QVERIFY(document.setContent(QByteArray("<a><c id='1'>text</c></a>"), false));
    QDomElement apart = document.createElement("s");
    QDomElement reference = document.createElement("b");
    reference.setAttribute("href", "#1");
    apart.appendChild(reference);

    QtSoapStruct structure;
    QVERIFY(structure.parse(apart));
    QVERIFY(!structure["b"].isValid());
    QCOMPARE(structure["b"].href(), QString("#1"));

    document.documentElement().appendChild(apart);
    QVERIFY(structure.parse(apart));
    QCOMPARE(SoapText::of(structure), QString(R"(s: {b: "text"})"));
}

void tst_SoapTypes::referencesThatCannotBeFollowed_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("href");

    QTest::newRow("to nothing") << R"(<a><s href="#1"/></a>)"
                                << "#1";
    QTest::newRow("to another document") << R"(<a><s href="http://127.0.0.1/x#1"/></a>)"
                                         << "http://127.0.0.1/x#1";
}

void tst_SoapTypes::referencesThatCannotBeFollowed()
{
    QFETCH(QString, xml);
    QFETCH(QString, href);

    QtSoapSimpleType simple(QtSoapQName("former"), 5);
    QVERIFY(!simple.parse(element(xml).firstChildElement("s")));
    QVERIFY(!simple.isValid());
    QCOMPARE(simple.name().name(), QString("s"));
    QCOMPARE(simple.href(), href);
    QCOMPARE(simple.errorString(),
             QStringLiteral("The reference \"%1\" can't be followed").arg(href));
}

void tst_SoapTypes::elementsThatAreRefused_data()
{
    QTest::addColumn<QDomElement>("refused");
    QTest::addColumn<QString>("error");

    const auto attributes = [](int count) {
        QString text;
        for (int i = 0; i < count; ++i)
            text += QStringLiteral(" a%1='%1'").arg(i);
        return text;
    };
    const QString tooMany = "An element has more than 256 attributes";
    // Each keeps its document alive.
    static QDomDocument documents[5];
    QDomDocument* document = documents;
    const auto row = [&](const char* name, const QString& xml, const QString& error) {
        QVERIFY(document->setContent(xml, false));
        QTest::newRow(name) << document->elementsByTagName("s").item(0).toElement() << error;
        ++document;
    };
    row("too many attributes", "<s" + attributes(257) + "/>", tooMany);
    row("too many attributes around it", "<a" + attributes(257) + "><s/></a>", tooMany);
    row("elements in a simple value", "<s><b/></s>",
        "The element \"s\" of a simple type has elements inside");

    const QString tooDeep = "The elements nest deeper than 200 levels";
    row("too deep inside",
        "<s>" + QString("<b>").repeated(200) + QString("</b>").repeated(200) + "</s>", tooDeep);
    row("too deep around it", QString("<b>").repeated(201) + "<s/>" + QString("</b>").repeated(201),
        tooDeep);
}

void tst_SoapTypes::elementsThatAreRefused()
{
    QFETCH(QDomElement, refused);

    QtSoapSimpleType simple(QtSoapQName("former"), 5);
    QVERIFY(!simple.parse(refused));
    QVERIFY(!simple.isValid());
    QTEST(simple.errorString(), "error");
}

void tst_SoapTypes::elementsBecomeValues_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("read");

    QTest::newRow("text") << "<a>text</a>"
                          << R"(a: "text")";
    QTest::newRow("text in pieces") << "<a>one <!-- two --><![CDATA[<three> &]]> four</a>"
                                    << R"(a: "one <three> & four")";
    QTest::newRow("nothing") << "<a/>"
                             << R"(a: "")";
    QTest::newRow("members") << "<a><b>1</b></a>"
                             << R"(a: {b: "1"})";
    QTest::newRow("a struct without members") << R"(<a xsi:type="SOAP-ENC:Struct"/>)"
                                              << "a: {}";
    QTest::newRow("an element of the encoding's that is a struct")
        << "<SOAP-ENC:Struct><b>1</b></SOAP-ENC:Struct>"
        << R"({http://schemas.xmlsoap.org/soap/encoding/}Struct: {b: "1"})";
    QTest::newRow("an array without members") << R"(<a SOAP-ENC:arrayType="xsd:int[0]"/>)"
                                              << "a: []";
    QTest::newRow("a type of somebody's with members")
        << R"(<a xsi:type="x:Order" xmlns:x="urn:x"><b>1</b></a>)"
        << R"(a: {b: "1"})";
}

void tst_SoapTypes::elementsBecomeValues()
{
    QFETCH(QString, xml);

    const std::unique_ptr<QtSoapType> value(QtSoapTypeFactory::instance().soapType(element(xml)));
    QVERIFY(value);
    QTEST(SoapText::of(*value), "read");
}

void tst_SoapTypes::noElementIsNoValue()
{
    QVERIFY(!QtSoapTypeFactory::instance().soapType(QDomNode()));
    QDomDocument document;
    QVERIFY(!QtSoapTypeFactory::instance().soapType(document.createComment("text")));
    QVERIFY(!QtSoapTypeFactory::instance().soapType(element(R"(<a xsi:type="xsd:int">x</a>)")));
}

namespace {

/// A point that is written as "x;y".
class Point : public QtSoapSimpleType
{
public:
    bool parse(QDomNode node) override
    {
        if (!QtSoapSimpleType::parse(node))
            return false;
        const QStringList parts = toString().split(QLatin1Char(';'));
        if (parts.size() != 2)
            return false;
        x = parts.at(0).toInt();
        y = parts.at(1).toInt();
        return true;
    }

    int x = 0;
    int y = 0;
};

/// Makes nothing, and counts its own end.
class Refusal : public QtSoapTypeConstructorBase
{
public:
    explicit Refusal(int& ends)
        : m_ends(ends)
    {}
    ~Refusal() override { ++m_ends; }

    QtSoapType* createObject(QDomNode) override
    {
        setErrorString(QStringLiteral("refused by its handler"));
        return nullptr;
    }

private:
    int& m_ends;
};

} // namespace

void tst_SoapTypes::aHandlerReadsItsType()
{
    QtSoapTypeFactory& factory = QtSoapTypeFactory::instance();
    QVERIFY(factory.registerHandler(QtSoapQName("Point", "urn:points"),
                                    new QtSoapTypeConstructor<Point>));

    const QString xml = R"(<all xmlns:p="urn:points"><declared xsi:type="p:Point">3;4</declared>)"
                        "<p:Point>5;6</p:Point><Point>7;8</Point></all>";
    QtSoapStruct all;
    QVERIFY(all.parse(element(xml)));
    const auto* declared = dynamic_cast<const Point*>(&all["declared"]);
    QVERIFY(declared);
    QCOMPARE(declared->x, 3);
    QCOMPARE(declared->y, 4);
    QCOMPARE(declared->name().name(), QString("declared"));
    const auto* named = dynamic_cast<const Point*>(&all[QtSoapQName("Point", "urn:points")]);
    QVERIFY(named);
    QCOMPARE(named->x, 5);
    QVERIFY(!dynamic_cast<const Point*>(&all[QtSoapQName("Point")]));
    QCOMPARE(all[QtSoapQName("Point")].toString(), QString("7;8"));

    QVERIFY(!factory.soapType(element(R"(<p:Point xmlns:p="urn:points">5</p:Point>)")));
}

void tst_SoapTypes::aHandlerGetsTheWholeElement()
{
    // What an order's element is made of, as the handler sees it.
    class Order : public QtSoapSimpleType
    {
    public:
        bool parse(QDomNode node) override
        {
            const QDomElement order = node.toElement();
            const QDomElement item = order.firstChildElement("item");
            const QDomElement picture = order.lastChildElement();
            parts = QStringList{
                order.namespaceURI() + ' ' + order.localName(),
                "urgent: " + order.attribute("urgent"),
                "size: " + order.attributeNS("urn:orders", "size"),
                "first: " + order.firstChild().nodeValue(),
                "item: " + item.attribute("n") + ' ' + item.text(),
                "between: " + item.nextSibling().nodeValue(),
                "last: " + picture.namespaceURI() + ' ' + picture.localName() + ' '
                    + picture.text(),
            };
            return true;
        }
        QStringList parts;
    };
    QVERIFY(QtSoapTypeFactory::instance().registerHandler(QtSoapQName("Order", "urn:orders"),
                                                          new QtSoapTypeConstructor<Order>));

    const std::unique_ptr<QtSoapType> value(QtSoapTypeFactory::instance().soapType(
        element(R"(<o:Order xmlns:o="urn:orders" urgent="1" o:size="A4">two <item n="5">prints)"
                R"(</item> of <o:picture>sea</o:picture></o:Order>)")));
    const auto* order = dynamic_cast<const Order*>(value.get());
    QVERIFY(order);
    const QStringList parts{"urn:orders Order",
                            "urgent: 1",
                            "size: A4",
                            "first: two ",
                            "item: 5 prints",
                            "between:  of ",
                            "last: urn:orders picture sea"};
    QCOMPARE(order->parts, parts);
}

namespace {

/// A struct that is read by a handler, with whatever of its kind lies inside.
class Box : public QtSoapStruct
{};

QByteArray boxes(int count)
{
    return R"(<m xmlns:b="urn:boxes">)" + QByteArray("<b:Box>").repeated(count)
        + QByteArray("</b:Box>").repeated(count) + "</m>";
}

} // namespace

void tst_SoapTypes::handlersWithinEachOther_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("error");

    const auto referred = [](int times) {
        return R"(<m xmlns:b="urn:boxes">)" + QByteArray("<r href='#1'/>").repeated(times)
            + "<b:Box id='1'/></m>";
    };
    QTest::newRow("a few") << boxes(5) << QString();
    QTest::newRow("many") << boxes(190) << QString();
    QTest::newRow("deeper") << boxes(196) << "The values nest deeper than 196 levels";
    QTest::newRow("one, again for each reference") << referred(100) << QString();
    QTest::newRow("one, again for too many references")
        << referred(10100) << "The references repeat too much";
}

void tst_SoapTypes::handlersWithinEachOther()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, error);

    static const bool registered = QtSoapTypeFactory::instance().registerHandler(
        QtSoapQName("Box", "urn:boxes"), new QtSoapTypeConstructor<Box>);
    QVERIFY(registered);
    QtSoapMessage message;
    QCOMPARE(message.setContent(envelope(body)), error.isEmpty());
    QCOMPARE(message.errorString(), error);
}

void tst_SoapTypes::aHandlerThatFails()
{
    static int ends = 0; // the handler lives as long as the process
    auto* refusal = new Refusal(ends);
    QVERIFY(QtSoapTypeFactory::instance().registerHandler(QtSoapQName("Secret", "urn:s"), refusal));
    const std::unique_ptr<QtSoapType> nothing(
        QtSoapTypeFactory::instance().soapType(element("<s:Secret xmlns:s=\"urn:s\"/>")));
    QVERIFY(!nothing);
    QCOMPARE(refusal->errorString(), QString("refused by its handler"));

    QtSoapMessage message;
    QVERIFY(!message.setContent(
        QByteArray("<e:Envelope xmlns:e=\"http://schemas.xmlsoap.org/soap/envelope/\"><e:Body>"
                   "<m><s:Secret xmlns:s=\"urn:s\"/></m></e:Body></e:Envelope>")));
    QVERIFY(message.isFault());
    QVERIFY2(message.errorString().contains("refused by its handler"),
             qPrintable(message.errorString()));
}

void tst_SoapTypes::aHandlerIsRegisteredOnce()
{
    static int ends = 0;
    QtSoapTypeFactory& factory = QtSoapTypeFactory::instance();
    QVERIFY(factory.registerHandler(QtSoapQName("Once", "urn:s"), new Refusal(ends)));
    QCOMPARE(ends, 0);
    QVERIFY(!factory.registerHandler(QtSoapQName("Once", "urn:s"), new Refusal(ends)));
    QCOMPARE(ends, 1);
    QVERIFY(!factory.registerHandler(QtSoapQName(), new Refusal(ends)));
    QCOMPARE(ends, 2);
    QVERIFY(!factory.registerHandler(QtSoapQName("None", "urn:s"), nullptr));
    auto* twice = new Refusal(ends);
    QVERIFY(factory.registerHandler(QtSoapQName("Twice", "urn:s"), twice));
    QVERIFY(!factory.registerHandler(QtSoapQName("Twice", "urn:s"), twice));
    QVERIFY(factory.registerHandler(QtSoapQName("Once", "urn:t"), new Refusal(ends)));
    QCOMPARE(ends, 2);
}

void tst_SoapTypes::prefixesAreRegistered()
{
    QtSoapNamespaces& namespaces = QtSoapNamespaces::instance();
    QCOMPARE(namespaces.prefixFor("http://schemas.xmlsoap.org/soap/envelope/"),
             QString("SOAP-ENV"));
    QCOMPARE(namespaces.prefixFor("http://schemas.xmlsoap.org/soap/encoding/"),
             QString("SOAP-ENC"));
    QCOMPARE(namespaces.prefixFor("http://www.w3.org/1999/XMLSchema"), QString("xsd"));
    QCOMPARE(namespaces.prefixFor("http://www.w3.org/1999/XMLSchema-instance"), QString("xsi"));
    QCOMPARE(namespaces.prefixFor(QString()), QString());

    namespaces.registerNamespace("shop", "urn:prefixed");
    QCOMPARE(namespaces.prefixFor("urn:prefixed"), QString("shop"));
    namespaces.registerNamespace("store", "urn:prefixed");
    QCOMPARE(namespaces.prefixFor("urn:prefixed"), QString("store"));

    const QString made = namespaces.prefixFor("urn:without-a-prefix");
    QVERIFY(!made.isEmpty());
    QCOMPARE(namespaces.prefixFor("urn:without-a-prefix"), made);
    QVERIFY(namespaces.prefixFor("urn:another-without") != made);

    // A prefix goes to the one who comes last.
    namespaces.registerNamespace("store", "urn:second");
    QCOMPARE(namespaces.prefixFor("urn:second"), QString("store"));
    QVERIFY(namespaces.prefixFor("urn:prefixed") != QString("store"));
}

void tst_SoapTypes::prefixesThatCannotBe_data()
{
    QTest::addColumn<QString>("prefix");

    QTest::newRow("nothing") << QString();
    QTest::newRow("a colon") << "a:b";
    QTest::newRow("a space") << "a b";
    QTest::newRow("a digit before") << "1a";
    QTest::newRow("an end of an attribute") << "a=\"\"";
    QTest::newRow("one of XML's") << "xml";
    QTest::newRow("the word of declarations") << "xmlns";
    QTest::newRow("SOAP's") << "SOAP-ENV";
    QTest::newRow("the schema's") << "xsi";
}

void tst_SoapTypes::prefixesThatCannotBe()
{
    QFETCH(QString, prefix);

    QtSoapNamespaces::instance().registerNamespace(prefix, "urn:refused");
    QVERIFY(QtSoapNamespaces::instance().prefixFor("urn:refused") != prefix);
    QCOMPARE(written(QtSoapSimpleType(QtSoapQName("a", "urn:refused"), 1)),
             QString(R"({urn:refused}a xsi:type=xsd:int "1")"));
}

void tst_SoapTypes::prefixesAreUsed()
{
    QtSoapNamespaces::instance().registerNamespace("chosen", "urn:chosen");
    QtSoapMessage message;
    message.setMethod("m", "urn:chosen");
    QVERIFY2(message.toXmlString().contains("<chosen:m"), qPrintable(message.toXmlString()));
}

void tst_SoapTypes::bothRegistriesServeAllThreads()
{
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread, &wrong] {
            for (int i = 0; i < 200; ++i) {
                const QString uri = QStringLiteral("urn:thread-%1-%2").arg(thread).arg(i);
                QtSoapNamespaces::instance().registerNamespace(
                    QStringLiteral("t%1-%2").arg(thread).arg(i), uri);
                if (QtSoapNamespaces::instance().prefixFor(uri)
                    != QStringLiteral("t%1-%2").arg(thread).arg(i))
                    ++wrong;
                if (!QtSoapTypeFactory::instance().registerHandler(
                        QtSoapQName(QStringLiteral("P%1-%2").arg(thread).arg(i), "urn:threads"),
                        new QtSoapTypeConstructor<Point>))
                    ++wrong;
                const std::unique_ptr<QtSoapType> point(QtSoapTypeFactory::instance().soapType(
                    element(QStringLiteral("<P%1-%2 xmlns=\"urn:threads\">1;2</P%1-%2>")
                                .arg(thread)
                                .arg(i))));
                if (!dynamic_cast<Point*>(point.get()))
                    ++wrong;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_SoapTypes)

#include "tst_SoapTypes.moc"
