#include "RestartQuestion.h"

#include <windows.h>

#include <string>

#include "LangString.h"

int AskRestartQuestion()
{
    const std::string question = LangString(kStringRestartQuestion);
    const std::string caption = LangString(kStringCaption);
    return MessageBoxA(nullptr, question.c_str(), caption.c_str(), MB_YESNO);
}
