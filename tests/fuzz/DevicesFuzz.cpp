// A device's texts and numbers: search IDs, compatible IDs, INF names, progress text, letters, requests to a driver.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "DriverFamilies.h"
#include "EnumerationEnd.h"
#include "FcoeAdapter.h"
#include "InstallingText.h"
#include "NdisVersionWord.h"
#include "NetworkDevices.h"
#include "PrivateRequestBuffer.h"
#include "Promise.h"
#include "SearchIds.h"
#include "ServedFamilies.h"
#include "UpperCase.h"

namespace {
/// The last place of a marker, by scanning backward from where it fits last; -1 without one.
int LastPlace(const std::string& text, const std::string& marker)
{
    for (int at = static_cast<int>(text.size()) - static_cast<int>(marker.size()); at >= 0; --at) {
        if (text.compare(static_cast<std::size_t>(at), marker.size(), marker) == 0) {
            return at;
        }
    }
    return -1;
}

std::string Prefix(const std::string& text, int place)
{
    return place < 0 ? text : text.substr(0, static_cast<std::size_t>(place));
}

void CheckSearchIds(const std::string& id)
{
    const int revision = LastPlace(id, "&REV");
    const int subSystem = LastPlace(id, "&SUBSYS");
    Promise(SearchIdForPass(id, 1) == id, "pass 1 looks for the full ID");
    Promise(SearchIdForPass(id, 2) == (revision == 0 ? std::nullopt : std::optional(Prefix(id, revision))),
            "pass 2 drops the revision");
    Promise(SearchIdForPass(id, 4) == (subSystem == 0 ? std::nullopt : std::optional(Prefix(id, subSystem))),
            "pass 4 drops sub-system and revision");
    Promise(!SearchIdForPass(id, 0) && !SearchIdForPass(id, 5) && !SearchIdForPass(id, -1), "there are four passes");
    std::optional<std::string> third;
    bool thrown = false;
    try {
        third = SearchIdForPass(id, 3);
    } catch (const std::out_of_range&) {
        thrown = true;
    }
    const bool skipped = revision == 0 || subSystem == 0;
    Promise(thrown == (!skipped && revision < 0), "pass 3 throws exactly when there is no revision to keep");
    if (!thrown) {
        Promise(
            third == (skipped ? std::nullopt
                              : std::optional(Prefix(id, subSystem) + id.substr(static_cast<std::size_t>(revision)))),
            "pass 3 cuts out the sub-system and keeps the revision");
    }
}

void CheckCompatibleIds(FuzzedDataProvider& input)
{
    std::string list;
    const int entries = input.ConsumeIntegralInRange(0, 6);
    for (int entry = 0; entry < entries; ++entry) {
        std::string id = input.ConsumeBool() ? std::string(input.PickValueInArray(kAcceptedCompatibleIds))
                                             : input.ConsumeRandomLengthString(40);
        if (!id.empty() && input.ConsumeIntegralInRange(0, 3) == 0) {
            id[input.ConsumeIntegralInRange<std::size_t>(0, id.size() - 1)] = input.ConsumeIntegral<char>();
        }
        list += id;
        if (input.ConsumeIntegralInRange(0, 7) != 0) {
            list += '\0';
        }
    }
    std::string_view expected;
    for (std::string_view rest = list; expected.empty() && !UpToNul(rest).empty();) {
        const std::string_view entry = UpToNul(rest);
        for (const std::string_view accepted : kAcceptedCompatibleIds) {
            expected = accepted == entry ? accepted : expected;
        }
        rest = entry.size() == rest.size() ? std::string_view() : rest.substr(entry.size() + 1);
    }
    Promise(FindAcceptedId(ExactBuffer(list).Text()) == expected, "the first entry that equals a row");
}

void CheckFamilies(const std::string& fileName, bool is61System)
{
    const DriverFamily* expected = nullptr;
    for (const DriverFamily& family : kDriverFamilies) {
        if (expected == nullptr && fileName.compare(0, family.infPrefix.size(), family.infPrefix) == 0) {
            expected = &family;
        }
    }
    const DriverFamily* const found = FamilyOfInf(fileName);
    Promise(found == expected, "the first family with whose prefix the name begins");
    if (found != nullptr) {
        const std::string pattern = DriverFilePattern(*found, is61System);
        const bool named62 = pattern == std::string(found->infPrefix) + "62*.sys";
        Promise(named62 || pattern == std::string(found->infPrefix) + "*.sys", "a pattern is prefix and extension");
        Promise(named62 == (is61System && found->filesFor61 == DriverFilesFor61::Named62), "62 on 6.1 systems only");
    }
    const std::optional<ServedFamily> system = FindServedFamily(fileName);
    for (const ServedFamily& row : kServedFamilies) {
        Promise((row.name == fileName) == (system && system->name == row.name),
                "a family's whole name selects its row");
    }
}

bool NoLeadByte(unsigned char)
{
    return false;
}

void CheckInstallingText(const std::string& format, const std::string& description, std::size_t maxBytes)
{
    // By rewriting the format step by step from its front.
    std::string expected;
    std::string rest = format;
    bool inserted = false;
    while (!rest.empty()) {
        const bool isInsert = !inserted && rest.compare(0, 2, "%s") == 0;
        const bool isSign = rest.compare(0, 2, "%%") == 0;
        expected += isInsert ? description : rest.substr(0, 1);
        inserted = inserted || isInsert;
        rest.erase(0, isInsert || isSign ? 2 : 1);
    }
    const std::string text = InstallingText(format, description, maxBytes, NoLeadByte);
    Promise(text.size() <= maxBytes, "the text keeps its limit");
    Promise(text == expected.substr(0, maxBytes), "the first insert is replaced, a doubled sign stands for one");
    Promise(InstallingText("%s", description, description.size(), NoLeadByte) == description,
            "a description is never a format");
}

void CheckUpperCase(const std::string& text, LeadByteTest isLeadByte)
{
    const ExactBuffer buffer(text);
    MakeUpperCase(buffer.All(), isLeadByte);
    bool ended = false;
    bool second = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        ended = ended || text[at] == '\0';
        const char expected = ended || second ? text[at] : Upper(text[at]);
        Promise(buffer.All()[at] == expected, "only letters change, and no second byte");
        second = !second && isLeadByte(static_cast<unsigned char>(text[at]));
    }
    const std::string once(buffer.Text());
    MakeUpperCase(buffer.All(), isLeadByte);
    Promise(buffer.Text() == once, "upper case stays as it is");
}

uint32_t NumberAt(std::string_view bytes, std::size_t at)
{
    uint32_t number = 0;
    for (std::size_t index = 4; index-- > 0;) {
        number = number * 256 + static_cast<unsigned char>(bytes[at + index]);
    }
    return number;
}

void CheckPrivateRequest(FuzzedDataProvider& input)
{
    const auto oid = input.ConsumeIntegral<uint32_t>();
    const std::string sent = input.ConsumeRandomLengthString(64);
    const PrivateRequestBuffer request = MakePrivateRequest(oid, std::as_bytes(std::span(sent)));
    Promise(request.bytes != nullptr && request.size == kPrivateHeaderBytes + sent.size(), "header and data");
    const std::string_view all(reinterpret_cast<const char*>(request.bytes.get()), request.size);
    Promise(NumberAt(all, 0) == oid && NumberAt(all, 4) == 0 && NumberAt(all, 8) == 0, "identifier and two zeros");
    Promise(all.substr(kPrivateHeaderBytes) == sent, "the data follows");

    // What a driver answers may be anything.
    std::string answered = input.ConsumeBytesAsString(request.size);
    answered.resize(request.size, '\x33');
    std::memcpy(request.bytes.get(), answered.data(), answered.size());
    const ExactBuffer received(sent.size());
    const PrivateAnswer answer = ReadPrivateAnswer(request, std::as_writable_bytes(received.All()));
    const uint32_t status = NumberAt(answered, 4);
    const uint32_t length = NumberAt(answered, 8);
    Promise(answer.status == status, "the driver's status");
    Promise(answer.bytesReturned == std::min<std::size_t>(length, sent.size()), "never more than there is room for");
    Promise(answer.bytesNeeded == (status == 0 ? 0 : length), "what a refused request would need");
    Promise(answer.error == (status == 0 ? 0U : status == kStatusNotSupported ? 50U : 31U), "an error for the status");
    Promise(
        received.Text().substr(0, answer.bytesReturned) == answered.substr(kPrivateHeaderBytes, answer.bytesReturned),
        "the answer's bytes");
    Promise(received.Text().find_first_not_of('\x5A', answer.bytesReturned) == std::string_view::npos,
            "nothing behind the answer's bytes changes");
}

void CheckEnumeration(FuzzedDataProvider& input)
{
    EnumerationEnd end;
    uint32_t errors = 0;
    const int runs = input.ConsumeIntegralInRange(0, 4);
    for (int run = 0; run < runs; ++run) {
        const auto status = input.PickValueInArray({0, 2, 5, 234, 259, -1});
        const int length = input.ConsumeIntegralInRange(1, 1100);
        for (int step = 0; step < length; ++step) {
            errors = status == 0 ? 0 : errors + 1;
            const bool over = end.ReachedWith(status);
            Promise(over == (status == 259 || errors > 1000), "no more items, or too many errors in a row");
            if (over) {
                return;
            }
        }
    }
}

void CheckNumbers(FuzzedDataProvider& input, const std::string& text)
{
    const auto word = input.ConsumeIntegral<uint32_t>();
    Promise(IsNdisVersion52OrLater(word) == (std::tuple(word / 65536, word % 65536) >= std::tuple(5U, 2U)),
            "5.2 or later");
    Promise(IsIScsiBootMode(word) == (word == 2 || word == 3), "two answers mean an iSCSI boot adapter");
    Promise(IsFcoeBootPort(word) == ((word & kNordaRemoteBooted) != 0 || (word & kNordaRemotePageFile) != 0),
            "booted over the port, or its page file behind it");
    std::wstring instance(text.begin(), text.end());
    instance.append(input.ConsumeIntegralInRange<std::size_t>(0, 5000), L'x');
    const auto name = FcoeAdapterName(instance);
    Promise(name.has_value() == (instance.size() + 8 < kFcoeAdapterNameChars), "a name that has room");
    Promise(!name || *name == L"\\DEVICE\\" + instance, "the device name of the instance");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const std::string id = input.ConsumeRandomLengthString(300);
    CheckSearchIds(id);
    for (const char* part : {"&REV_03", "&SUBSYS_00011A2B"}) {
        CheckSearchIds(id + part);
        CheckSearchIds(part + id);
    }
    CheckUpperCase(id, NoLeadByte);
    CheckUpperCase(id, [](unsigned char byte) { return byte >= 0x81 && byte <= 0x9F; });
    CheckFamilies(id, input.ConsumeBool());
    CheckFamilies("\\NGEA" + id, input.ConsumeBool());
    CheckFamilies("Windows " + id, false);
    CheckInstallingText(input.ConsumeRandomLengthString(60), id, input.ConsumeIntegralInRange<std::size_t>(0, 400));
    CheckCompatibleIds(input);
    CheckPrivateRequest(input);
    CheckEnumeration(input);
    CheckNumbers(input, id);
    return 0;
}
