#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "StringIds.h"

/// Language of every string look-up: a Windows language identifier. Written once at start-up.
extern uint16_t runLanguageId;

/// MorvixRes.dll. Loaded at start-up, freed by the end-of-run decision: no text may be loaded after that.
extern HMODULE resourceModule;

/// Size of every message buffer, in bytes.
inline constexpr int kMessageBytes = 260;

/// Finds string `id` in exactly the language `languageId` of `module`, without the platform's fall-back to others.
/// @param wideBuffer  Receives at most wideChars - 1 characters and a terminator.
/// @param wideChars   Size of `wideBuffer` in characters.
/// @return `wideBuffer`, or null when the string is missing or empty.
wchar_t* GetLanguageSpecificString(HMODULE module, uint32_t id, uint16_t languageId, wchar_t* wideBuffer,
                                   int wideChars);

/// Loads string `id` of `module` in the run language, in the system's ANSI code page.
/// @param buffer      Cleared first; empty when the string is missing.
/// @param bufferSize  Size of `buffer` in bytes.
/// @return length of the text in bytes, without the terminator.
int LoadLangString(HMODULE module, uint32_t id, char* buffer, int bufferSize);

/// @return string `id` of the resource library, cut to a message buffer of 260 bytes.
std::string LangString(uint32_t id);
