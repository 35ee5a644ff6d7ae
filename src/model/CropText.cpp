#include "model/CropText.h"

#include <QLocale>
#include <QRegularExpression>

#include <cmath>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

QString number(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

} // namespace

QString cropText(const CropRect& crop)
{
    return u"{{%1, %2}, {%3, %4}}"_s.arg(number(crop.x), number(crop.y), number(crop.width), number(crop.height));
}

std::optional<CropRect> parseCrop(const QString& text)
{
    static const QRegularExpression form(uR"(^\s*\{\s*\{([^,{}]+),([^,{}]+)\}\s*,\s*\{([^,{}]+),([^,{}]+)\}\s*\}\s*$)"_s);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    double numbers[4];
    for (int i = 0; i < 4; ++i) {
        bool isNumber = false;
        numbers[i] = match.captured(i + 1).trimmed().toDouble(&isNumber);
        if (!isNumber || !std::isfinite(numbers[i]))
            return std::nullopt;
    }
    const CropRect crop{ numbers[0], numbers[1], numbers[2], numbers[3] };
    if (crop.width <= 0 || crop.height <= 0)
        return std::nullopt;
    return crop;
}

} // namespace vantry
