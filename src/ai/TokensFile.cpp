#include "ai/TokensFile.h"

#include "project/DurableFile.h"

#include <QStringConverter>

#include <algorithm>
#include <exception>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t largestTokensFile = 1 << 20;

bool isLineBreak(QChar character)
{
    return (character >= u'\n' && character <= u'\r') || character == u'\u0085' || character == u'\u2028' || character == u'\u2029';
}

bool isWrapping(QChar character)
{
    return character == u'"' || character == u'\'' || character == u' ';
}

std::optional<QString> textIn(const std::filesystem::path& file)
{
    try {
        const QByteArray bytes = QByteArray::fromStdString(readFile(file, largestTokensFile));
        // Stateless: a sequence that is cut off at the end is an error too.
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        QString text = decoder(bytes);
        return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

/// What stands behind the name in a line that has it.
std::optional<QStringView> assigned(QStringView line)
{
    constexpr auto keyword = "export "_L1;
    constexpr auto name = "OPENROUTER_API_KEY="_L1;
    line = line.trimmed();
    if (line.startsWith(keyword))
        line = line.sliced(keyword.size());
    return line.startsWith(name) ? std::optional(line.sliced(name.size())) : std::nullopt;
}

QStringView unwrapped(QStringView value)
{
    while (!value.isEmpty() && isWrapping(value.front()))
        value = value.sliced(1);
    while (!value.isEmpty() && isWrapping(value.back()))
        value.chop(1);
    return value;
}

/// Takes the first line, without its end, off a text.
QStringView takeLine(QStringView& text)
{
    qsizetype length = 0;
    while (length < text.size() && !isLineBreak(text[length]))
        ++length;
    const QStringView line = text.first(length);
    text = text.sliced(std::min(length + 1, text.size()));
    return line;
}

} // namespace

std::optional<QString> keyInTokensFile(const std::filesystem::path& file)
{
    const QString text = textIn(file).value_or(QString());
    for (QStringView rest = text; !rest.isEmpty();) {
        if (const auto value = assigned(takeLine(rest))) {
            const QString key = unwrapped(*value).toString();
            return key.isEmpty() ? std::nullopt : std::optional(key);
        }
    }
    return std::nullopt;
}

} // namespace vantry
