#include "InfCopies.h"

#include "NameList.h"
#include "PathResolution.h"

void StoreInfOnce(const KitSearch& search, const std::string& fileName, const std::string& infPath,
                  const std::string& sourceDirectory)
{
    const std::string name = BaseNameOf(fileName) + ".inf";
    if (ContainsName(search.storedInfs, name)) {
        return;
    }
    search.log.Store(infPath, sourceDirectory);
    search.storedInfs.push_back(name);
    // There is no blank between the name and "to".
    search.log.Say("Adding INF ", name, "to vector\n");
}
