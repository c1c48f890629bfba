#include <gmock/gmock.h>
#include <windows.h>
// Needs windows.h first.
#include <commctrl.h>

#include <algorithm>
#include <array>
#include <cwctype>

#include "TextLibrary.h"

namespace {
constexpr uint16_t kButtonClass = 0x0080;
constexpr uint16_t kStaticClass = 0x0082;
constexpr uint16_t kNamedClass = 0;
constexpr uint32_t kNoId = 0xFFFF;

constexpr uint32_t kStatusText = 1000;
constexpr uint32_t kFinish = 1002;
constexpr uint32_t kRestartNow = 1004;
constexpr uint32_t kRestartLater = 1007;
constexpr uint32_t kActivity = 1010;

const TemplateControl& Control(const DialogTemplate& dialog, uint32_t id)
{
    const auto found = std::find_if(dialog.controls.begin(), dialog.controls.end(),
                                    [id](const TemplateControl& control) { return control.id == id; });
    if (found == dialog.controls.end()) {
        throw std::runtime_error("no control " + std::to_string(id));
    }
    return *found;
}

bool Overlap(const TemplateControl& a, const TemplateControl& b)
{
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

/// Measures texts in the dialog's font. Letters of scripts that this system may have no font for count as wide as a W.
class DialogFont
{
public:
    /// @param percent  Scale of the display.
    explicit DialogFont(int percent)
        : m_context(CreateCompatibleDC(nullptr)),
          m_font(CreateFontA(-MulDiv(8, 96 * percent, 72 * 100), 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0,
                             0, "MS Shell Dlg"))
    {
        SelectObject(m_context, m_font);
        TEXTMETRICA metrics{};
        GetTextMetricsA(m_context, &metrics);
        m_unitHeight = metrics.tmHeight;
        constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
        SIZE size{};
        GetTextExtentPoint32A(m_context, kLetters, 52, &size);
        m_unitWidth = (size.cx / 26 + 1) / 2;
    }
    ~DialogFont()
    {
        DeleteDC(m_context);
        DeleteObject(m_font);
    }
    DialogFont(const DialogFont&) = delete;
    DialogFont& operator=(const DialogFont&) = delete;

    [[nodiscard]] int PixelsAcross(int units) const { return MulDiv(units, m_unitWidth, 4); }
    [[nodiscard]] int PixelsDown(int units) const { return MulDiv(units, m_unitHeight, 8); }

    /// @return the size in pixels of `text`, broken into lines of at most `width` pixels.
    [[nodiscard]] SIZE Measure(std::wstring text, int width, UINT format) const
    {
        constexpr wchar_t kFirstWide = 0x1100;
        std::replace_if(
            text.begin(), text.end(), [](wchar_t c) { return c >= kFirstWide; }, L'W');
        RECT area{0, 0, width, 0};
        DrawTextW(m_context, text.c_str(), -1, &area, DT_CALCRECT | format);
        return {area.right, area.bottom};
    }

private:
    HDC m_context;
    HFONT m_font;
    int m_unitWidth = 0;
    int m_unitHeight = 0;
};

constexpr std::array kScales = {100, 125, 150, 200};

/// The dialog of every language, with the language's name in the failure messages.
template <class Check>
void ForEveryDialog(Check check)
{
    const TextLibrary library;
    for (const Language& language : kLanguages) {
        SCOPED_TRACE(language.name);
        const std::optional<DialogTemplate> dialog = library.Dialog(language.id);
        ASSERT_TRUE(dialog.has_value());
        check(library, language, *dialog);
    }
}
} // namespace

TEST(ProgressDialogTemplate, EveryLanguageHasTheDialogAndNoOtherLanguageHasOne)
{
    const TextLibrary library;
    std::vector<uint16_t> expected;
    for (const Language& language : kLanguages) {
        expected.push_back(language.id);
    }
    EXPECT_THAT(library.LanguagesOf(MAKEINTRESOURCEA(5), 101), testing::UnorderedElementsAreArray(expected));
}

TEST(ProgressDialogTemplate, IsAHiddenCentredWindowOfTheProgramsOwnClass)
{
    ForEveryDialog([](const TextLibrary& library, const Language& language, const DialogTemplate& dialog) {
        // The resource compiler writes the name in capitals; the system compares class names without regard to case.
        EXPECT_EQ(lstrcmpiW(dialog.className.c_str(), L"Morvix"), 0);
        EXPECT_EQ(dialog.title, library.Text(language.id, 1008));
        EXPECT_EQ(dialog.fontPoints, 8);
        EXPECT_EQ(dialog.fontName, L"MS Shell Dlg");
        constexpr uint32_t kWanted = DS_SHELLFONT | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU;
        EXPECT_EQ(dialog.style & kWanted, kWanted);
        EXPECT_EQ(dialog.style & WS_VISIBLE, 0U);
    });
}

TEST(ProgressDialogTemplate, HasExactlyTheControlsOfTheProgram)
{
    ForEveryDialog([](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
        std::vector<std::pair<uint32_t, uint16_t>> controls;
        for (const TemplateControl& control : dialog.controls) {
            controls.emplace_back(control.id, control.classAtom);
        }
        EXPECT_THAT(controls,
                    testing::UnorderedElementsAre(
                        std::pair(kStatusText, kStaticClass), std::pair(1U, kButtonClass), std::pair(2U, kButtonClass),
                        std::pair(kFinish, kButtonClass), std::pair(kRestartNow, kButtonClass),
                        std::pair(kRestartLater, kButtonClass), std::pair(kActivity, kNamedClass),
                        std::pair(kNoId, kStaticClass), std::pair(kNoId, kStaticClass)));
    });
}

TEST(ProgressDialogTemplate, OnlyOkAndCancelAreThereAtFirst)
{
    ForEveryDialog([](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
        for (const uint32_t id : {kStatusText, uint32_t{IDOK}, uint32_t{IDCANCEL}}) {
            EXPECT_EQ(Control(dialog, id).style & (WS_VISIBLE | WS_DISABLED), static_cast<uint32_t>(WS_VISIBLE)) << id;
        }
        for (const uint32_t id : {kFinish, kRestartNow, kRestartLater}) {
            EXPECT_EQ(Control(dialog, id).style & (WS_VISIBLE | WS_DISABLED), static_cast<uint32_t>(WS_DISABLED)) << id;
        }
        EXPECT_EQ(Control(dialog, IDOK).style & BS_TYPEMASK, static_cast<uint32_t>(BS_DEFPUSHBUTTON));
    });
}

TEST(ProgressDialogTemplate, TheCancelButtonIsCaptionedAsItsText)
{
    ForEveryDialog([](const TextLibrary& library, const Language& language, const DialogTemplate& dialog) {
        EXPECT_EQ(Control(dialog, IDCANCEL).text, library.Text(language.id, 15));
    });
}

TEST(ProgressDialogTemplate, ADeviceNameIsShownWithItsAmpersands)
{
    ForEveryDialog([](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
        EXPECT_NE(Control(dialog, kStatusText).style & SS_NOPREFIX, 0U);
    });
}

TEST(ProgressDialogTemplate, EveryControlKeepsTheMarginAndTheButtonsTheirSize)
{
    static constexpr int kMargin = 7;
    ForEveryDialog([](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
        for (const TemplateControl& control : dialog.controls) {
            EXPECT_GE(control.x, kMargin) << control.id;
            EXPECT_GE(control.y, kMargin) << control.id;
            EXPECT_LE(control.x + control.width, dialog.width - kMargin) << control.id;
            EXPECT_LE(control.y + control.height, dialog.height - kMargin) << control.id;
            if (control.classAtom == kButtonClass) {
                EXPECT_GE(control.width, 50) << control.id;
                EXPECT_EQ(control.height, 14) << control.id;
            }
        }
    });
}

TEST(ProgressDialogTemplate, NothingThatIsShownTogetherOverlaps)
{
    const std::vector<std::vector<uint32_t>> states = {{kStatusText, kNoId, IDOK, IDCANCEL},
                                                       {kStatusText, kNoId, kActivity, kFinish},
                                                       {kStatusText, kNoId, kFinish},
                                                       {kStatusText, kNoId, kRestartNow, kRestartLater}};
    ForEveryDialog([&](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
        for (const std::vector<uint32_t>& shown : states) {
            for (std::size_t a = 0; a < shown.size(); ++a) {
                for (std::size_t b = a + 1; b < shown.size(); ++b) {
                    EXPECT_FALSE(Overlap(Control(dialog, shown[a]), Control(dialog, shown[b])))
                        << shown[a] << " " << shown[b];
                }
            }
        }
    });
}

TEST(ProgressDialogTemplate, TheActivityBarStartsHiddenAndMovesByItself)
{
    ForEveryDialog([](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
        const TemplateControl& bar = Control(dialog, kActivity);
        EXPECT_EQ(lstrcmpiW(bar.className.c_str(), L"msctls_progress32"), 0);
        constexpr uint32_t kMarquee = 8;
        EXPECT_EQ(bar.style & (WS_VISIBLE | kMarquee), kMarquee);
    });
}

TEST(ProgressDialogTemplate, TheTabKeyGoesFromTheFirstButtonToTheLast)
{
    ForEveryDialog([](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
        std::vector<uint32_t> order;
        for (const TemplateControl& control : dialog.controls) {
            if ((control.style & WS_TABSTOP) != 0) {
                order.push_back(control.id);
            }
        }
        EXPECT_THAT(order,
                    testing::ElementsAre(uint32_t{IDOK}, uint32_t{IDCANCEL}, kFinish, kRestartNow, kRestartLater));
    });
}

TEST(ProgressDialogTemplate, NoTwoButtonsShareTheirAccessKey)
{
    ForEveryDialog([](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
        std::vector<std::wstring> keys;
        for (const TemplateControl& control : dialog.controls) {
            const std::size_t mark = control.text.find(L'&');
            if (mark == std::wstring::npos) {
                continue;
            }
            ASSERT_EQ(control.text.find(L'&', mark + 1), std::wstring::npos) << control.id;
            std::wstring key = control.text.substr(mark + 1, 1);
            // A key that every keyboard of the language has without a second one.
            EXPECT_TRUE(key.at(0) < 0x80 && iswalpha(key[0]) != 0) << control.id;
            CharUpperW(key.data());
            EXPECT_THAT(keys, testing::Not(testing::Contains(key))) << control.id;
            keys.push_back(key);
        }
        // Both restart buttons have one: the mouse may be what has no driver yet.
        EXPECT_EQ(keys.size(), 2U);
    });
}

TEST(ProgressDialogTemplate, EveryCaptionFitsItsButtonOnEveryScale)
{
    for (const int percent : kScales) {
        SCOPED_TRACE(percent);
        const DialogFont font(percent);
        ForEveryDialog([&](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
            for (const TemplateControl& control : dialog.controls) {
                if (control.classAtom == kButtonClass) {
                    constexpr int kBorder = 8; // pixels on both sides together
                    EXPECT_FALSE(control.text.empty()) << control.id;
                    const LONG width = font.Measure(control.text, 0, DT_SINGLELINE).cx;
                    EXPECT_GT(width, 0);
                    EXPECT_LE(width + kBorder, font.PixelsAcross(control.width)) << control.id;
                }
            }
        });
    }
}

TEST(ProgressDialogTemplate, EveryTextFitsTheStatusAreaOnEveryScale)
{
    for (const int percent : kScales) {
        SCOPED_TRACE(percent);
        const DialogFont font(percent);
        ForEveryDialog([&](const TextLibrary& library, const Language& language, const DialogTemplate& dialog) {
            const TemplateControl& area = Control(dialog, kStatusText);
            for (const uint32_t id : library.TextIds(language.id)) {
                const std::wstring advice = id == 1 ? library.Text(language.id, 20).value_or(L"") : L"";
                const SIZE size =
                    font.Measure(library.Text(language.id, id).value_or(L"") + advice, font.PixelsAcross(area.width),
                                 DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS);
                EXPECT_GT(size.cy, 0) << id;
                EXPECT_LE(size.cy, font.PixelsDown(area.height)) << id;
            }
        });
    }
}

TEST(ProgressDialogTemplate, TheLongestDeviceNameFitsTheStatusArea)
{
    constexpr std::size_t kLongestText = 259;
    std::wstring name;
    while (name.size() < kLongestText) {
        name += L"Norda Server Adapter ";
    }
    for (const int percent : kScales) {
        SCOPED_TRACE(percent);
        const DialogFont font(percent);
        ForEveryDialog([&](const TextLibrary&, const Language&, const DialogTemplate& dialog) {
            const TemplateControl& area = Control(dialog, kStatusText);
            const SIZE size = font.Measure(name, font.PixelsAcross(area.width), DT_WORDBREAK | DT_NOPREFIX);
            EXPECT_LE(size.cy, font.PixelsDown(area.height));
        });
    }
}

TEST(ProgressDialogTemplate, TheSystemMakesTheDialogWithTheProgramsClass)
{
    const TextLibrary library;
    const INITCOMMONCONTROLSEX controls{sizeof(INITCOMMONCONTROLSEX), ICC_PROGRESS_CLASS};
    ASSERT_TRUE(InitCommonControlsEx(&controls));
    WNDCLASSA windowClass{};
    windowClass.style = CS_VREDRAW | CS_HREDRAW | CS_NOCLOSE;
    windowClass.lpfnWndProc = DefDlgProcA;
    windowClass.cbWndExtra = DLGWINDOWEXTRA;
    windowClass.hInstance = library.Module();
    windowClass.lpszClassName = "Morvix";
    ASSERT_NE(RegisterClassA(&windowClass), 0);
    const auto procedure = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
    const HWND dialog = CreateDialogParamA(library.Module(), MAKEINTRESOURCEA(101), nullptr, procedure, 0);
    ASSERT_NE(dialog, nullptr) << GetLastError();
    EXPECT_FALSE(IsWindowVisible(dialog));
    for (const int id : {1000, 1, 2, 1002, 1004, 1007, 1010}) {
        EXPECT_NE(GetDlgItem(dialog, id), nullptr) << id;
    }
    EXPECT_TRUE(DestroyWindow(dialog));
    EXPECT_TRUE(UnregisterClassA("Morvix", library.Module()));
}
