#pragma once

#include "support/TemporaryFolder.h"

#include <QByteArray>

#include <string>
#include <vector>

namespace vantry::test {

/// A folder for temporary files of the test's own, which this process uses as long as it lives.
class TemporaryPlace {
public:
    TemporaryPlace() { qputenv("TMPDIR", m_folder.path().c_str()); }
    ~TemporaryPlace() { m_before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", m_before); }

    TemporaryPlace(const TemporaryPlace&) = delete;
    TemporaryPlace& operator=(const TemporaryPlace&) = delete;

    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.path()))
            names.push_back(entry.path().filename());
        return names;
    }

private:
    const QByteArray m_before = qgetenv("TMPDIR");
    const TemporaryFolder m_folder;
};

} // namespace vantry::test
