#include "MatrixRun.h"

#include <algorithm>

#include "Environment.h"
#include "ProgramWindows.h"

namespace {
constexpr DWORD kPollMilliseconds = 10;
constexpr DWORD kMessageLimit = 10000;
constexpr WPARAM kCountdownTimer = 0;
constexpr int kCountdownStart = 20;
constexpr int kButtons[] = {IDOK, IDCANCEL, ProgressWindow::kFinish, ProgressWindow::kRestartNow,
                            ProgressWindow::kRestartLater};

// What all rows share: making it takes longer than many a run.
struct Shared
{
    DebugOutput output;
    RestartWatch restarts;
    MatrixFolders folders;
};
std::unique_ptr<Shared> shared;

std::string TextOf(const std::vector<unsigned>& ids)
{
    std::string text;
    for (const unsigned id : ids) {
        text += ResourceText(id);
    }
    return text;
}

void ExpectOnlyTheseButtons(const ProgressWindow& window, const std::vector<int>& offered)
{
    for (const int button : kButtons) {
        EXPECT_EQ(window.Offers(button), std::ranges::count(offered, button) != 0) << "button " << button;
    }
}

std::string CountdownText(int seconds)
{
    std::string text = ResourceText(23);
    const std::string insert = "%1!u!";
    return text.replace(text.find(insert), insert.size(), std::to_string(seconds));
}

// One tick of the countdown at once; its own ticks go on beside it.
void ExpectCountdown(const ProgressWindow& window)
{
    DWORD_PTR ignored = 0;
    SendMessageTimeoutA(window.Window(), WM_TIMER, kCountdownTimer, 0, SMTO_ABORTIFHUNG, kMessageLimit, &ignored);
    const std::string shown = window.TextOf(ProgressWindow::kStatus);
    bool counts = false;
    for (int seconds = kCountdownStart; seconds > 0; --seconds) {
        counts = counts || shown == CountdownText(seconds);
    }
    EXPECT_TRUE(counts) << "the dialog says [" << shown << "]";
}
} // namespace

void PrintTo(const MatrixRow& row, std::ostream* out)
{
    *out << "[" << row.options->text << "] on " << row.system->name << ", " << NameOf(row.machine);
}

void MatrixRun::SetUpTestSuite()
{
    shared = std::make_unique<Shared>();
}

void MatrixRun::TearDownTestSuite()
{
    shared.reset();
}

MatrixRun::MatrixRun()
    : m_expected(ExpectedOf(GetParam())),
      m_folder(shared->folders.For(GetParam())),
      m_machine(GetParam(), m_expected),
      m_restartsBefore(shared->restarts.Refused())
{
    shared->output.Clear();
}

size_t MatrixRun::Restarts() const
{
    return shared->restarts.Refused() - m_restartsBefore;
}

std::vector<std::string> MatrixRun::FolderChanges()
{
    return shared->folders.ChangesIn(GetParam());
}

FinishedRun MatrixRun::GoThrough()
{
    const std::string program = m_folder.At("Morvix.exe");
    ProgramRun run(shared->output, program, program, GetParam().options->text, m_folder.Path());
    switch (m_expected.end) {
        case End::Refusal:
            if (m_expected.everVisible) {
                AnswerRefusal(run);
            }
            break;
        case End::FinishButton:
        case End::RestartButtons:
            UseDialog(run);
            break;
        case End::ByItself:
        case End::Help:
            break;
    }
    WatchToTheEnd(run);
    return run.Finish();
}

// Looks again and again at what can be seen of a run that needs nobody.
void MatrixRun::WatchToTheEnd(const ProgramRun& run) const
{
    for (const DWORD start = GetTickCount(); run.StillRuns() && GetTickCount() - start < ProgramRun::kLimit;
         Sleep(kPollMilliseconds)) {
        for (const HWND window : VisibleWindowsOf(run)) {
            EXPECT_TRUE(m_expected.everVisible) << "window " << window << " can be seen";
            if (m_expected.end == End::ByItself) {
                for (const int button : kButtons) {
                    const HWND control = GetDlgItem(window, button);
                    EXPECT_FALSE(control != nullptr && IsWindowVisible(control)) << "button " << button;
                }
            }
        }
    }
}

void MatrixRun::AnswerRefusal(const ProgramRun& run) const
{
    const MessageBoxSeen box = WaitForMessageBox(run);
    EXPECT_EQ(box.caption, ResourceText(3));
    EXPECT_EQ(box.text, ResourceText(m_expected.lastText));
    PressInBox(box, IDOK);
}

void MatrixRun::UseDialog(const ProgramRun& run) const
{
    const ProgressWindow window(run);
    if (!m_expected.welcome.empty()) {
        window.WaitUntilOffered(IDOK);
        EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), TextOf(m_expected.welcome));
        EXPECT_EQ(window.Title(), ResourceText(1008));
        EXPECT_EQ(window.TextOf(IDCANCEL), ResourceText(15));
        ExpectOnlyTheseButtons(window, {IDOK, IDCANCEL});
        window.Press(IDOK);
    }
    // The work continues for a moment after the last buttons.
    run.WaitForTrace("Exit -> InstallDrivers()");
    if (m_expected.end == End::FinishButton) {
        window.WaitUntilOffered(ProgressWindow::kFinish);
        EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(m_expected.lastText));
        ExpectOnlyTheseButtons(window, {ProgressWindow::kFinish});
        window.WaitUntilFocused(ProgressWindow::kFinish);
        window.Press(ProgressWindow::kFinish);
    } else {
        window.WaitUntilOffered(ProgressWindow::kRestartLater);
        ExpectOnlyTheseButtons(window, {ProgressWindow::kRestartNow, ProgressWindow::kRestartLater});
        window.WaitUntilFocused(ProgressWindow::kRestartNow);
        ExpectCountdown(window);
        window.Press(ProgressWindow::kRestartLater);
    }
}
