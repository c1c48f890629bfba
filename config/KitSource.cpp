#include "KitSource.h"

#include <vector>

std::shared_ptr<const ModelSection> KitSource::ReadModelSection(const char* section, const std::string& file)
{
    std::vector<char> lines(kModelSectionBytes);
    const uint32_t count = ReadSection(section, lines, file);
    return std::make_shared<const ModelSection>(count, lines);
}
