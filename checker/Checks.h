#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "FindingList.h"
#include "KitReading.h"

/// The groups of rules. Each looks at a kit on one system, or at the kit as a whole.

[[nodiscard]] inline std::string InBrackets(std::string_view section)
{
    return "[" + std::string(section) + "]";
}

/// A kit that is being checked.
struct KitCheck
{
    KitReading& reading;
    FindingList& findings;
    std::vector<std::string> systems; ///< sections of Morvix.ini

    /// Adds a finding in a file of the kit.
    void Add(int rule, const std::string& path, const ProfilePlace& place, const std::string& what,
             const std::string& system = {}, const std::string& key = {}) const
    {
        findings.Add(rule, path, place, what, system, key);
    }
};

void CheckSystemSection(const KitCheck& check, const SystemReading& on); ///< 101 to 111, 113
void CheckBase(const KitCheck& check);                                   ///< 112
void CheckUnsearchedInfs(const KitCheck& check);                         ///< 201
void CheckQualification(const KitCheck& check, const SystemReading& on); ///< 202 to 204, 206
void CheckSectionNames(const KitCheck& check, const SystemReading& on);  ///< 205, names of Morvix.ini
void CheckUnnamedSections(const KitCheck& check);                        ///< 205, sections of INF files
void CheckModelSections(const KitCheck& check);                          ///< 206, 207, 301 to 305
void CheckOrder(const KitCheck& check);                                  ///< 401 to 405
void CheckAcceptedDevices(const KitCheck& check);                        ///< 701
void CheckPackages(const KitCheck& check);                               ///< 501, 502, 504 to 507; 503 in one package
void CheckStaleFiles(const KitCheck& check);                             ///< 503 among packages
void CheckReaders(const KitCheck& check, KitReading& other);             ///< 601
void CheckFileNames(const KitCheck& check, const SystemReading& on);     ///< 602
