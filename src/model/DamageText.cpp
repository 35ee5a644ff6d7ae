#include "model/DamageText.h"

#include "model/Paths.h"
#include "project/Timecode.h"

#include <QStringList>

#include <algorithm>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t mostNamed = 4;

QString clock(MediaTime time)
{
    return QString::fromStdString(timecode(std::chrono::duration<double>(time).count()));
}

QString describe(const Damage& damage)
{
    const auto what = damage.of == Damage::Of::Pictures ? "no pictures at "_L1 : "no sound at "_L1;
    const QString from = clock(damage.range.from), to = clock(damage.range.to);
    return what + from + (to == from ? QString() : u"–"_s + to) + " ("_L1 + text(damage.clip) + u')';
}

} // namespace

QString damageText(const std::vector<Damage>& damage)
{
    if (damage.empty())
        return {};
    QStringList places;
    const auto named = std::min(damage.size(), mostNamed);
    for (std::size_t i = 0; i < named; ++i)
        places.append(describe(damage[i]));
    if (named < damage.size())
        places.append(u"and %1 more"_s.arg(damage.size() - named));
    return u"Parts of the recording are damaged. The video has "_s + places.join(", "_L1);
}

} // namespace vantry
