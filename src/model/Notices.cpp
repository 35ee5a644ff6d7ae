#include "model/Notices.h"

#include <algorithm>

namespace vantry {

std::optional<QString> Notices::shown() const
{
    if (m_notices.empty())
        return std::nullopt;
    const auto warning = std::ranges::find(m_notices.rbegin(), m_notices.rend(), Notice::Weight::Warning, &Notice::m_weight);
    return (warning == m_notices.rend() ? m_notices.back() : *warning)->m_text;
}

void Notice::set(Weight weight, const QString& text)
{
    if (text.isEmpty())
        return clear();
    const bool isThere = !m_text.isEmpty();
    const bool isNews = !isThere || weight != m_weight || (weight == Weight::Warning && text != m_text);
    m_weight = weight;
    m_text = text;
    if (isNews) {
        std::erase(m_notices.m_notices, this);
        m_notices.m_notices.push_back(this);
    }
    Q_EMIT m_notices.changed();
}

void Notice::clear()
{
    if (m_text.isEmpty())
        return;
    m_text.clear();
    std::erase(m_notices.m_notices, this);
    Q_EMIT m_notices.changed();
}

} // namespace vantry
