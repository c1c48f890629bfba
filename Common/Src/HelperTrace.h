#pragma once

/// Traces "Enterning CHelper::name()" and "Exiting CHelper::name()" around a scope. Existing log readers expect the
/// misspelling.
class HelperTrace
{
public:
    explicit HelperTrace(const char* name) : HelperTrace(name, name) {}
    /// For an operation whose exit line names another operation. The names must outlive the object.
    HelperTrace(const char* entryName, const char* exitName);
    ~HelperTrace();
    HelperTrace(const HelperTrace&) = delete;
    HelperTrace& operator=(const HelperTrace&) = delete;

private:
    const char* m_exitName;
};
