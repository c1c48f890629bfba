#include "ChildReport.h"

#include <sstream>
#include <string_view>

namespace {
constexpr std::string_view kLine = "line ";
constexpr std::string_view kValue = "value ";

// Line breaks in a text are part of it.
std::string Escaped(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '\n':
                escaped += "\\n";
                break;
            case '\r':
                escaped += "\\r";
                break;
            case '\\':
                escaped += R"(\\)";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string Unescaped(std::string_view escaped)
{
    std::string text;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] != '\\' || i + 1 == escaped.size()) {
            text += escaped[i];
            continue;
        }
        const char code = escaped[++i];
        text += code == 'n' ? '\n' : code == 'r' ? '\r' : code;
    }
    return text;
}
} // namespace

std::string ChildReport::At(const std::string& name) const
{
    const auto found = values.find(name);
    return found == values.end() ? "<none>" : found->second;
}

std::string EncodeReport(const ChildReport& report)
{
    std::string text;
    for (const auto& [name, value] : report.values) {
        text.append(kValue).append(name).append("=").append(Escaped(value)).append("\n");
    }
    for (const std::string& line : report.lines) {
        text.append(kLine).append(Escaped(line)).append("\n");
    }
    return text;
}

ChildReport DecodeReport(const std::string& text)
{
    ChildReport report;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(kLine)) {
            report.lines.push_back(Unescaped(std::string_view(line).substr(kLine.size())));
        } else if (line.starts_with(kValue) && line.find('=') != std::string::npos) {
            const std::size_t equals = line.find('=');
            report.values[line.substr(kValue.size(), equals - kValue.size())] =
                Unescaped(std::string_view(line).substr(equals + 1));
        }
    }
    return report;
}
