#pragma once

#include <set>
#include <string>
#include <vector>

/// The platform's INF store. What is stored during the object's life is removed at its end.
class StoredInfs
{
public:
    StoredInfs();
    ~StoredInfs();
    StoredInfs(const StoredInfs&) = delete;
    StoredInfs& operator=(const StoredInfs&) = delete;

    /// @return full paths of the INF files stored since.
    [[nodiscard]] std::vector<std::string> New() const;

private:
    std::set<std::string> m_before;
};
