#include "MsiPackage.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "EntryPoints.h"
#include "SystemLibrary.h"

namespace {
using CloseHandleFn = decltype(&MsiCloseHandle);

class UniqueMsiHandle
{
public:
    explicit UniqueMsiHandle(CloseHandleFn close) : m_close(close) {}
    ~UniqueMsiHandle()
    {
        if (m_handle != 0) {
            m_close(m_handle);
        }
    }
    UniqueMsiHandle(const UniqueMsiHandle&) = delete;
    UniqueMsiHandle& operator=(const UniqueMsiHandle&) = delete;
    [[nodiscard]] MSIHANDLE Get() const { return m_handle; }
    [[nodiscard]] MSIHANDLE* Receive() { return &m_handle; }

private:
    CloseHandleFn m_close;
    MSIHANDLE m_handle = 0;
};

void Expect(UINT status, const std::string& what)
{
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error(what + ", error " + std::to_string(status));
    }
}
} // namespace

InstallerEngine::InstallerEngine() : m_library(LoadSystemLibrary("msi.dll")) {}

template <class Fn>
Fn InstallerEngine::Find(const char* name) const
{
    const Fn entry = m_library ? FindEntry<Fn>(m_library.get(), name) : nullptr;
    if (entry == nullptr) {
        throw std::runtime_error(std::string("this system lacks ") + name);
    }
    return entry;
}

MsiPackage::MsiPackage(std::string path) : m_path(std::move(path))
{
    const auto codes = Rows("SELECT `Value` FROM `Property` WHERE `Property` = 'ProductCode'");
    if (codes.size() != 1) {
        throw std::runtime_error(m_path + " has no product code");
    }
    m_productCode = codes.front();
}

std::vector<std::string> MsiPackage::Rows(const char* query, bool isStream) const
{
    const auto close = m_engine.Find<CloseHandleFn>("MsiCloseHandle");
    const auto readText = m_engine.Find<decltype(&MsiRecordGetStringA)>("MsiRecordGetStringA");
    const auto readStream = m_engine.Find<decltype(&MsiRecordReadStream)>("MsiRecordReadStream");
    const auto fetch = m_engine.Find<decltype(&MsiViewFetch)>("MsiViewFetch");
    UniqueMsiHandle database(close);
    UniqueMsiHandle view(close);
    Expect(m_engine.Find<decltype(&MsiOpenDatabaseA)>("MsiOpenDatabaseA")(
               m_path.c_str(), reinterpret_cast<LPCSTR>(MSIDBOPEN_READONLY), database.Receive()),
           "cannot open " + m_path);
    Expect(
        m_engine.Find<decltype(&MsiDatabaseOpenViewA)>("MsiDatabaseOpenViewA")(database.Get(), query, view.Receive()),
        query);
    Expect(m_engine.Find<decltype(&MsiViewExecute)>("MsiViewExecute")(view.Get(), 0), query);
    std::vector<std::string> rows;
    for (;;) {
        UniqueMsiHandle record(close);
        const UINT status = fetch(view.Get(), record.Receive());
        if (status == ERROR_NO_MORE_ITEMS) {
            return rows;
        }
        Expect(status, query);
        std::string cell(1 << 16, '\0');
        if (!isStream) {
            auto chars = static_cast<DWORD>(cell.size());
            Expect(readText(record.Get(), 1, cell.data(), &chars), query);
            rows.push_back(cell.substr(0, chars));
            continue;
        }
        rows.emplace_back();
        for (DWORD bytes = 1; bytes > 0;) {
            bytes = static_cast<DWORD>(cell.size());
            Expect(readStream(record.Get(), 1, cell.data(), &bytes), query);
            rows.back().append(cell, 0, bytes);
        }
    }
}

std::vector<std::string> MsiPackage::FileNames() const
{
    std::vector<std::string> names = Rows("SELECT `FileName` FROM `File`");
    for (std::string& name : names) {
        // "SHORT~1.TXT|Long name.text"
        name = name.substr(name.find('|') + 1);
        std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    }
    std::ranges::sort(names);
    return names;
}

std::string MsiPackage::ActionLibrary() const
{
    const auto libraries = Rows("SELECT `Data` FROM `Binary` WHERE `Name` = 'MorvixActions'", true);
    if (libraries.size() != 1) {
        throw std::runtime_error(m_path + " has no library of steps");
    }
    return libraries.front();
}

bool MsiPackage::IsInstalled() const
{
    return m_engine.Find<decltype(&MsiQueryProductStateA)>("MsiQueryProductStateA")(m_productCode.c_str()) ==
           INSTALLSTATE_DEFAULT;
}
