#include "FuzzTarget.h"

#include "ApplicationParametersHandler.h"
#include "ArgumentsFile_p.h"
#include "CommonConstants.h"
#include "Files.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <list>
#include <string>

// The file in which a launcher hands a command line over.

using namespace VEK_NAMESPACE;
using Private::readArgumentsFile;
using Private::receiveArguments;

namespace {

/// As the standard has it: no longer form than needed, no surrogates, nothing above U+10FFFF.
bool isUtf8(const QByteArray& text)
{
    for (int i = 0; i < text.size();) {
        const auto first = std::uint8_t(text[i++]);
        int more = 0;
        std::uint8_t lowest = 0x80;
        std::uint8_t highest = 0xBF;
        if (first < 0x80)
            continue;
        if (first >= 0xC2 && first <= 0xDF) {
            more = 1;
        } else if (first >= 0xE0 && first <= 0xEF) {
            more = 2;
            lowest = first == 0xE0 ? 0xA0 : lowest;
            highest = first == 0xED ? 0x9F : highest;
        } else if (first >= 0xF0 && first <= 0xF4) {
            more = 3;
            lowest = first == 0xF0 ? 0x90 : lowest;
            highest = first == 0xF4 ? 0x8F : highest;
        } else {
            return false;
        }
        for (; more > 0; --more) {
            if (i == text.size() || std::uint8_t(text[i]) < lowest
                || std::uint8_t(text[i]) > highest)
                return false;
            lowest = 0x80;
            highest = 0xBF;
            ++i;
        }
    }
    return true;
}

std::list<std::string> expectedArguments(const std::string& content)
{
    std::list<std::string> arguments;
    std::size_t start = 0;
    while (start < content.size()) {
        const std::size_t end = std::min(content.find('\n', start), content.size());
        if (end > start) {
            const std::string line = content.substr(start, end - start);
            arguments.push_back(line.substr(0, line.find('\0')));
        }
        start = end + 1;
    }
    return arguments;
}

} // namespace

int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication application(*argc, *argv);
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("arguments"));
    const QByteArray content = bytesOf(data, size);
    require(writeFile(path, content), "the arguments file can be written");

    const std::list<std::string> expected =
        isUtf8(content) ? expectedArguments(content.toStdString()) : std::list<std::string>();
    require(readArgumentsFile(path) == expected, "each line of UTF-8 is an argument");
    require(readFile(path) == content, "a file that is read stays as it is");

    CApplicationParametersHandler_Abstract handler(2, nullptr);
    receiveArguments(path, handler);
    require(!QFile::exists(path), "a file that was received is gone");
    QStringList received;
    if (!expected.empty())
        received << QCoreApplication::applicationFilePath();
    for (const std::string& argument : expected)
        received << QString::fromStdString(argument);
    require(handler.receivedArguments() == received, "the handler gets what is in the file");
    return 0;
}
