#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ExportData.h"
#include "ExportLines.h"
#include "Machine.h"
#include "RegistryTree.h"
#include "WantedKeys.h"

/// Reads a registry export block by block and keeps the keys that a description of a machine needs. Where a device or a
/// fact of the system may be lost, by damage or because the file is cut off, the whole export is refused: an answer
/// from what is left would be wrong. It is still read to its end, to name all damage at once. Damage elsewhere is a
/// warning.
///
/// An export that is cut off exactly between two keys cannot be told from a shorter one.
class ExportReader
{
public:
    /// @param source     Name of the file for the diagnostics.
    /// @param mostBytes  How much is kept; what comes after that is left out.
    explicit ExportReader(std::string source, std::size_t mostBytes = RegistryTree::kMostBytes);
    ~ExportReader() = default;
    ExportReader(const ExportReader&) = delete;
    ExportReader& operator=(const ExportReader&) = delete;

    void Feed(std::string_view bytes);
    void Finish();

    /// @return true when the file is not an export, which makes reading further pointless; after Finish also when it is
    /// a
    ///         damaged one.
    [[nodiscard]] bool IsRefused() const { return m_isRefused; }
    [[nodiscard]] const RegistryTree& Tree() const { return m_tree; }
    [[nodiscard]] const std::vector<Diagnostic>& Diagnostics() const { return m_diagnostics; }

private:
    void ReadLine(const ExportLine& line);
    void ReadFirstLine(const ExportLine& line);
    void ReadOtherLine(const ExportLine& line);
    void GoOn(const ExportLine& line);
    void ReadBracket(const ExportLine& line);
    void ReadKey(std::u16string_view path, const ExportLine& line, bool isRemoved);
    void ReadValue(const ExportLine& line);
    void TakeData(ExportData::State state);
    void ComplainOfValue();
    [[nodiscard]] bool IsOpen() const { return m_open != ExportData::State::Complete; }
    [[nodiscard]] std::u16string_view TextOf(const ExportLine& line);
    bool ReadHeader(std::u16string_view text);
    void CheckLastLine(const ExportLine& line, bool goesOn);
    [[nodiscard]] bool IsWholeLine(const ExportLine& line);
    void CheckEnd();

    void ComplainOfSize(std::size_t line);
    void Refuse(std::size_t line, std::string what);
    void Warn(std::size_t line, std::string what, std::string cure = "export it again");
    void Complain(std::size_t line, std::string what, std::string cure = "export it again");
    void Remark(Severity severity, std::size_t line, std::string what, std::string cure);

    std::string m_source;
    RegistryTree m_tree;
    std::vector<Diagnostic> m_diagnostics;
    std::size_t m_unsaid = 0; // diagnostics beyond those kept
    std::size_t m_lastUnsaid = 0;
    bool m_saidSize = false;
    bool m_isRefused = false;
    bool m_isDamaged = false; // where it matters: Finish refuses the file
    bool m_sawHeader = false;
    bool m_wideHex = true;

    // The key whose values are read; null while unneeded keys are skipped.
    RegistryKey* m_key = nullptr;
    const WantedKey* m_wanted = nullptr;
    std::u16string m_valueName;
    std::size_t m_valueLine = 0;
    bool m_isContinued = false; // the value has taken more than one line
    ExportData m_data;
    // OpenText or OpenBytes while a value goes on in the next line, else Complete.
    ExportData::State m_open = ExportData::State::Complete;
    bool m_endsWithBlankLine = false; // so far
    bool m_endsInsideSkipped = false; // so far: the last line of a key that is skipped goes on in the next one

    std::u16string m_text; // of the line that is read

    // Last: it calls this object.
    ExportLines m_lines;
};
