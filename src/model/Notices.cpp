#include "model/Notices.h"

#include <algorithm>

namespace vantry {

/// Null where there is none.
const Notice* Notices::newest() const
{
    if (m_notices.empty())
        return nullptr;
    const auto warning = std::ranges::find(m_notices.rbegin(), m_notices.rend(), Notice::Weight::Warning, &Notice::m_weight);
    return warning == m_notices.rend() ? m_notices.back() : *warning;
}

std::optional<QString> Notices::shown() const
{
    const Notice* notice = newest();
    return notice ? std::optional(notice->m_text) : std::nullopt;
}

bool Notices::isWarning() const
{
    const Notice* notice = newest();
    return notice && notice->m_weight == Notice::Weight::Warning;
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
