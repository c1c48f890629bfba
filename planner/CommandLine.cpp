#include "CommandLine.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "DriverInstallRecord.h"
#include "MorvixVersion.h"
#include "ServedFamilies.h"
#include "SystemChoice.h"
#include "TextStyle.h"

namespace {
constexpr std::size_t kHelpColumn = 24;

void AppendHelpLine(std::string& help, std::string left, const std::string& right)
{
    left.resize(std::max(left.size() + 1, kHelpColumn), ' ');
    help += "  " + left + right + "\n";
}

/// The help of each command fits a screen of 80 columns and 24 lines: one line for each option.
std::string HelpOf(const CLI::App* app)
{
    const bool isCommand = app->get_parent() != nullptr;
    std::string help = "Usage: morvix-kit " + (isCommand ? app->get_name() + " " : std::string()) + app->get_footer() +
                       "\n\n" + app->get_description() + "\n\n";
    for (const CLI::App* const command : app->get_subcommands([](const CLI::App*) { return true; })) {
        AppendHelpLine(help, command->get_name(), command->get_description());
    }
    help += isCommand ? "" : "\n";
    for (const CLI::Option* const option : app->get_options([](const CLI::Option* o) { return o->nonpositional(); })) {
        const std::string argument = option->get_type_size() == 0 ? "" : " " + option->get_type_name();
        AppendHelpLine(help, option->get_name() + argument, option->get_description());
    }
    return help;
}

/// @return what is wrong with the name of a system; empty for a good one.
std::string SystemProblem(const std::string& section)
{
    return IsSystemSection(section) ? "" : section + " is no system; one of " + Joined(SystemSections());
}

/// @return what is wrong with the name of a family; empty for a good one.
std::string FamilyProblem(const std::string& name)
{
    if (FindServedFamily(name)) {
        return {};
    }
    std::vector<std::string> names;
    names.reserve(kServedFamilies.size());
    for (const ServedFamily& family : kServedFamilies) {
        names.push_back("\"" + std::string(family.name) + "\"");
    }
    return name + " is no family; one of " + Joined(names);
}

ProfileDialect DialectOf(const std::string& reader)
{
    if (reader != "windows" && reader != "wine") {
        throw CLI::ValidationError("--reader", reader + " is no reader; one of windows, wine");
    }
    return reader == "wine" ? ProfileDialect::Wine : ProfileDialect::Windows;
}

/// @return what is wrong with an argument that has no value, such as a script's variable leaves; empty when none has.
std::string EmptyArgumentProblem(std::span<const char* const> arguments)
{
    for (const std::string_view argument : arguments) {
        if (argument.empty()) {
            return "an argument is empty";
        }
        if (argument.starts_with("--") && argument.find('=') == argument.size() - 1) {
            return std::string(argument) + " has no value";
        }
    }
    return {};
}

/// The option table. A command's members are filled while the arguments are parsed.
class Arguments
{
public:
    Arguments()
    {
        m_app.formatter_fn([](const CLI::App* app, const std::string&, CLI::AppFormatMode) { return HelpOf(app); });
        m_app.description("Tells what Morvix would do on a machine with a kit, without touching it.");
        m_app.footer("COMMAND [options] ...");
        m_app.set_help_flag("--help", "this help; morvix-kit COMMAND --help for a command");
        m_app.set_version_flag("--version", std::string("morvix-kit ") + MORVIX_VERSION_TEXT, "the version");
        m_app.require_subcommand(1);
        AddPlan();
        AddExplain();
        AddDiff();
        AddReport();
        AddCheck();
        AddRules();
    }

    Request Parse(int argc, const char* const* argv)
    {
        // Without the program's own name, which may be missing.
        const std::span arguments(argv + std::min(argc, 1), argv + argc);
        if (const std::string problem = EmptyArgumentProblem(arguments); !problem.empty()) {
            return PrintedAnswer{.text = problem + "; see morvix-kit --help", .code = ExitCode::Usage};
        }
        if (argc > 1 && *argv[1] != '-' && !IsCommand(argv[1])) {
            return PrintedAnswer{.text = std::string(argv[1]) + " is no command; see morvix-kit --help",
                                 .code = ExitCode::Usage};
        }
        try {
            m_app.parse(argc, argv);
        } catch (const CLI::CallForHelp&) {
            const std::vector<CLI::App*> chosen = m_app.get_subcommands();
            return PrintedAnswer{.text = (chosen.empty() ? &m_app : chosen.front())->help(), .code = ExitCode::Clean};
        } catch (const CLI::CallForVersion& version) {
            return PrintedAnswer{.text = std::string(version.what()) + "\n", .code = ExitCode::Clean};
        } catch (const CLI::ParseError& error) {
            const std::vector<CLI::App*> chosen = m_app.get_subcommands();
            const std::string command = chosen.empty() ? "" : chosen.front()->get_name() + " ";
            return PrintedAnswer{.text = std::string(error.what()) + "; see morvix-kit " + command + "--help",
                                 .code = ExitCode::Usage};
        }
        return m_request;
    }

private:
    [[nodiscard]] bool IsCommand(const std::string& name) const
    {
        return !m_app.get_subcommands([&name](const CLI::App* command) { return command->get_name() == name; }).empty();
    }

    /// @param request  Becomes the answer of Parse when the command is chosen.
    template <class Command>
    CLI::App& AddCommand(const char* name, const char* description, const char* usage, Command& request)
    {
        CLI::App& app = *m_app.add_subcommand(name, description);
        app.footer(usage);
        app.set_help_flag("--help", "this help");
        app.final_callback([this, &request] { m_request = request; });
        return app;
    }

    static void AddPlaceOptions(CLI::App& app, const std::vector<KitOptions*>& kits)
    {
        const auto forEach = [kits](const auto& set) {
            for (KitOptions* const kit : kits) {
                set(*kit);
            }
        };
        app.add_option_function<std::string>(
               "--setup-dir",
               [forEach](const std::string& path) { forEach([&path](KitOptions& kit) { kit.setupDir = path; }); },
               "the kit's folder on the machine (C:\\Kit)")
            ->type_name("PATH");
        app.add_option_function<std::vector<std::string>>(
               "--map",
               [forEach](const std::vector<std::string>& maps) {
                   forEach([&maps](KitOptions& kit) { kit.maps = maps; });
               },
               "where a folder of the machine is here")
            ->type_name("'D:\\=DIR'")
            ->allow_extra_args(false);
    }

    static void AddKitOptions(CLI::App& app, const std::vector<KitOptions*>& kits)
    {
        AddPlaceOptions(app, kits);
        app.add_option_function<std::string>(
               "--reader",
               [kits](const std::string& reader) {
                   const ProfileDialect dialect = DialectOf(reader);
                   for (KitOptions* const kit : kits) {
                       kit->reader = dialect;
                   }
               },
               "read INI files as windows does, or as wine does")
            ->type_name("WHICH");
    }

    static void AddWishes(CLI::App& app, PlanWish& wish)
    {
        app.add_option("--system", wish.system.section, "plan for this system, by its section name")
            ->type_name("SECTION")
            ->check(SystemProblem);
        app.add_option("--family", wish.system.family, "with this name of the system's family")
            ->type_name("NAME")
            ->check(FamilyProblem);
        app.add_flag("--scan-all", wish.scanAll, "search excluded INF files too (option /n)");
    }

    static void AddOutputOptions(CLI::App& app, OutputOptions& output)
    {
        app.add_option("-o,--output", output.file, "write there instead of standard output")->type_name("FILE");
        app.add_flag("--quiet", output.quiet, "no progress and no warnings, errors only");
    }

    void AddPlan()
    {
        CLI::App& app =
            AddCommand("plan", "What the installer would do on machines, and why.", "[options] KIT MACHINE...", m_plan);
        app.add_option("KIT", m_plan.kit.folder)->required();
        app.add_option("MACHINE", m_plan.machines)->required();
        AddWishes(app, m_plan.wish);
        AddKitOptions(app, {&m_plan.kit});
        app.add_flag("--require-driver", m_plan.requireDriver, "exit 1 when a served device gets no driver");
        const auto addFormat = [this, &app](const char* name, PlanFormat format, const char* help) {
            return app.add_flag_callback(
                name, [this, format] { m_plan.format = format; }, help);
        };
        CLI::Option* const json = addFormat("--json", PlanFormat::Json, "one JSON document");
        CLI::Option* const ndjson = addFormat("--ndjson", PlanFormat::NdJson, "one JSON document a line and machine");
        CLI::Option* const trace = addFormat("--trace", PlanFormat::Trace, "the lines that the installer would trace");
        app.add_flag("--findings", m_plan.findings, "check the kit; JSON names each device's findings");
        json->excludes(ndjson)->excludes(trace);
        ndjson->excludes(trace);
        AddOutputOptions(app, m_plan.output);
    }

    void AddExplain()
    {
        CLI::App& app = AddCommand("explain", "The whole way of one device to its driver.",
                                   "[options] KIT MACHINE DEVICE", m_explain);
        app.add_option("KIT", m_explain.kit.folder)->required();
        app.add_option("MACHINE", m_explain.machine)->required();
        app.add_option("DEVICE", m_explain.device)->required();
        app.add_option("--why-not", m_explain.whyNot, "what kept this INF from winning")->type_name("INF");
        AddWishes(app, m_explain.wish);
        AddKitOptions(app, {&m_explain.kit});
        AddOutputOptions(app, m_explain.output);
    }

    void AddDiff()
    {
        CLI::App& app = AddCommand("diff", "What changes on machines with another kit.",
                                   "[options] OLDKIT NEWKIT MACHINE...", m_diff);
        app.add_option("OLDKIT", m_diff.oldKit.folder)->required();
        app.add_option("NEWKIT", m_diff.newKit.folder)->required();
        app.add_option("MACHINE", m_diff.machines)->required();
        AddWishes(app, m_diff.wish);
        AddKitOptions(app, {&m_diff.oldKit, &m_diff.newKit});
        app.add_flag("--json", m_diff.json, "one JSON document");
        AddOutputOptions(app, m_diff.output);
    }

    void AddReport()
    {
        CLI::App& app = AddCommand("report", "One page about the machines of a fleet, as HTML.",
                                   "[options] KIT MACHINE...", m_report);
        app.add_option("KIT", m_report.kit.folder)->required();
        app.add_option("MACHINE", m_report.machines)->required();
        app.add_option("--old", m_report.oldKit.folder, "say which machines lose a driver of this kit")
            ->type_name("KIT");
        AddWishes(app, m_report.wish);
        AddKitOptions(app, {&m_report.kit, &m_report.oldKit});
        AddOutputOptions(app, m_report.output);
    }

    /// An option whose value is one of a few words.
    template <class Value>
    static void AddChoice(CLI::App& app, const char* name, Value& value,
                          const std::vector<std::pair<std::string, Value>>& choices, const char* help)
    {
        app.add_option_function<std::string>(
               name,
               [name, &value, choices](const std::string& word) {
                   const auto chosen =
                       std::ranges::find(choices, word, [](const auto& choice) { return choice.first; });
                   if (chosen == choices.end()) {
                       std::vector<std::string> words;
                       std::ranges::transform(choices, std::back_inserter(words),
                                              [](const auto& choice) { return choice.first; });
                       throw CLI::ValidationError(name, word + " is none of " + Joined(words));
                   }
                   value = chosen->second;
               },
               help)
            ->type_name("WHICH");
    }

    void AddCheck()
    {
        CLI::App& app =
            AddCommand("check", "Whether a kit is sound: what its users would run into.", "[options] KIT", m_check);
        app.add_option("KIT", m_check.kit.folder)->required();
        app.add_option_function<std::vector<std::string>>(
               "--system",
               [this](const std::vector<std::string>& sections) {
                   for (const std::string& section : sections) {
                       if (section == "all") {
                           m_check.systems = SystemSections();
                           return;
                       }
                       if (const std::string problem = SystemProblem(section); !problem.empty()) {
                           throw CLI::ValidationError("--system", problem);
                       }
                       m_check.systems.push_back(section);
                   }
               },
               "check for this system, or for all")
            ->type_name("SECTION|all")
            ->allow_extra_args(false);
        AddChoice<CheckReader>(
            app, "--reader", m_check.reader,
            {{"windows", CheckReader::Windows}, {"wine", CheckReader::Wine}, {"both", CheckReader::Both}},
            "read INI files as windows, wine or both do");
        AddPlaceOptions(app, {&m_check.kit});
        AddChoice<CheckFormat>(
            app, "--format", m_check.format,
            {{"text", CheckFormat::Text}, {"json", CheckFormat::Json}, {"sarif", CheckFormat::Sarif}},
            "text, json, or sarif (2.1.0)");
        app.add_option("--baseline", m_check.baseline, "leave out the findings accepted there")->type_name("FILE");
        app.add_option("--write-baseline", m_check.writeBaseline, "accept all findings of today")->type_name("FILE");
        std::vector<std::pair<std::string, Severity>> severities;
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
            severities.emplace_back(NameOf(severity), severity);
        }
        AddChoice(app, "--fail-on", m_check.failOn, severities, "exit 1 from this severity on (error)");
        AddOutputOptions(app, m_check.output);
    }

    void AddRules()
    {
        CLI::App& app =
            AddCommand("rules", "The rules of check, or one of them with examples.", "[options] [ID]", m_rules);
        app.add_option("ID", m_rules.id);
        app.add_flag("--markdown", m_rules.markdown, "all rules as a document");
        AddOutputOptions(app, m_rules.output);
    }

    PlanCommand m_plan;
    ExplainCommand m_explain;
    DiffCommand m_diff;
    ReportCommand m_report;
    CheckCommand m_check;
    RulesCommand m_rules;
    Request m_request;
    CLI::App m_app;
};
} // namespace

Request ParseCommandLine(int argc, const char* const* argv)
{
    return Arguments().Parse(argc, argv);
}
