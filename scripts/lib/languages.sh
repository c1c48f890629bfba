# shellcheck shell=bash
# The languages that the program speaks, each on the system that it belongs to. Sourced.
# shellcheck disable=SC2034

# name|locale of the system: one for every language identifier that the program asks its texts for.
languages=(
    'English|en_US.UTF-8'
    'German|de_DE.UTF-8'
    'Spanish|es_ES.UTF-8'
    'French|fr_FR.UTF-8'
    'Italian|it_IT.UTF-8'
    'Japanese|ja_JP.UTF-8'
    'Korean|ko_KR.UTF-8'
    'PortugueseBrazil|pt_BR.UTF-8'
    'ChineseChina|zh_CN.UTF-8'
    'ChineseSingapore|zh_SG.UTF-8'
    'ChineseTaiwan|zh_TW.UTF-8'
    'ChineseHongKong|zh_HK.UTF-8'
    'ChineseMacau|zh_MO.UTF-8'
)

# What Windows draws dialogs with, each replaced by a free font: one as wide for Latin letters, and one that has all East
# Asian characters.
dialog_fonts() {
    local font
    printf '[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]\n"Tahoma"="Liberation Sans"\n'
    for font in 'MS UI Gothic' 'MS Gothic' SimSun 'Microsoft YaHei' PMingLiU 'Microsoft JhengHei' Gulim 'Malgun Gothic'; do
        printf '"%s"="WenQuanYi Micro Hei"\n' "$font"
    done
    printf '\n'
}
