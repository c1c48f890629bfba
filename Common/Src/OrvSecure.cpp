#include "OrvSecure.h"

#include "EntryPoints.h"
#include "OrvBounded.h"
#include "OrvDebug.h"

constinit OrvSecureRecord OrvSecureState;

namespace {
constexpr char kSourceFile[] = R"(..\..\Common\Src\OrvSecure)";
// Fixed line numbers: existing log readers expect them.
constexpr int kCopyInstallLine = 98;
constexpr int kAppendInstallLine = 150;
constexpr int kNullDestinationLine = 189;

using SetInvalidParameterHandlerFn = OrvInvalidParameterHandlerFn (*)(OrvInvalidParameterHandlerFn);

/// @return the function that installs a handler with the runtime that this program is linked to; null when the system's
///         runtime has none. Our own file has a stand-in of that name, which the runtime never calls.
SetInvalidParameterHandlerFn FindHandlerInstallation()
{
    const HMODULE runtime = GetModuleHandleA("msvcrt.dll");
    return runtime == nullptr ? nullptr
                              : FindEntry<SetInvalidParameterHandlerFn>(runtime, "_set_invalid_parameter_handler");
}

void InstallHandlerOnce(int line)
{
    if (OrvSecureState.installed.exchange(OrvSecureInvalidParameterHandler) == OrvSecureInvalidParameterHandler) {
        return;
    }
    OrvTrace().Error(kSourceFile, line, "Setting invalid parameter handler to: OrvSecureInvalidParameterHandler");
    if (const SetInvalidParameterHandlerFn install = FindHandlerInstallation(); install != nullptr) {
        OrvSecureState.previous = install(OrvSecureInvalidParameterHandler);
    }
}

int Report(int error, const char* sourceFile, int line, const char* destination)
{
    if (error == 0) {
        return error;
    }
    // A checked runtime function calls the handler before it returns its error; so do our own.
    OrvReportInvalidParameter();
    if (error == kOrvTooSmall) {
        OrvTrace().Error(sourceFile, line, "OrvSafeCopy ERROR: strDestination size 0, or too small");
    } else if (destination != nullptr) {
        // A size of 0 is reported with this text too.
        OrvTrace().Error(sourceFile, line, "OrvSafeCopy ERROR: NULL == strSource");
    } else {
        // This line names the library's file, not the caller's.
        OrvTrace().Error(kSourceFile, kNullDestinationLine, "OrvSafeCopy ERROR: NULL == strDestination");
    }
    return error;
}

int TracedAppend(const char* sourceFile, int line, char* destination, size_t destinationBytes, const char* source)
{
    OrvTrace().Print("Entering OrvSafeCat : Static");
    const int error = OrvSafeCat(sourceFile, line, destination, destinationBytes, source);
    OrvTrace().Print("Leaving OrvSafeCat : Static : %d", error);
    return error;
}
} // namespace

void OrvSecureInvalidParameterHandler(const wchar_t* /*expression*/, const wchar_t* /*function*/,
                                      const wchar_t* /*file*/, unsigned /*line*/, uintptr_t /*reserved*/)
{
    OrvTrace().Print("OrvSecureInvalidParameterHandler : ERROR");
}

void OrvReportInvalidParameter()
{
    OrvSecureInvalidParameterHandler(nullptr, nullptr, nullptr, 0, 0);
}

int OrvSafeCopy(const char* sourceFile, int line, char* destination, size_t destinationBytes, const char* source)
{
    InstallHandlerOnce(kCopyInstallLine);
    return Report(OrvBoundedCopy(destination, destinationBytes, source), sourceFile, line, destination);
}

// The error texts name OrvSafeCopy for both operations.
int OrvSafeCat(const char* sourceFile, int line, char* destination, size_t destinationBytes, const char* source)
{
    InstallHandlerOnce(kAppendInstallLine);
    return Report(OrvBoundedAppend(destination, destinationBytes, source), sourceFile, line, destination);
}

int OrvSafeCopy(const char* sourceFile, int line, char (&destination)[1024], const char* source)
{
    OrvTrace().Print("Entering OrvSafeCopy : Static");
    const int error = OrvSafeCopy(sourceFile, line, destination, sizeof(destination), source);
    OrvTrace().Print("Leaving OrvSafeCopy : Static : %d", error);
    return error;
}

int OrvSafeCat(const char* sourceFile, int line, char (&destination)[1024], const char* source)
{
    return TracedAppend(sourceFile, line, destination, sizeof(destination), source);
}

int OrvSafeCat(const char* sourceFile, int line, char (&destination)[260], const char* source)
{
    return TracedAppend(sourceFile, line, destination, sizeof(destination), source);
}
