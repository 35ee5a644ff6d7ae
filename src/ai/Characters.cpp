#include "ai/Characters.h"

#include <nlohmann/json.hpp>

#include <QString>
#include <QTextBoundaryFinder>

namespace vantry {

namespace {

QString decoded(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

std::size_t characterCount(std::string_view text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, decoded(text));
    std::size_t count = 0;
    while (finder.toNextBoundary() >= 0)
        ++count;
    return count;
}

std::string firstCharacters(std::string_view text, std::size_t count)
{
    const QString whole = decoded(text);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, whole);
    for (std::size_t passed = 0; passed < count && finder.toNextBoundary() >= 0; ++passed) { }
    return finder.position() < 0 ? whole.toStdString() : whole.first(finder.position()).toStdString();
}

std::string readableText(std::string_view bytes)
{
    using Json = nlohmann::json;
    constexpr int compact = -1;
    const bool asciiOnly = false;
    // Writing is what repairs.
    return Json::parse(Json(bytes).dump(compact, ' ', asciiOnly, Json::error_handler_t::replace)).get<std::string>();
}

std::string trimmed(std::string_view text)
{
    return decoded(text).trimmed().toStdString();
}

} // namespace vantry
