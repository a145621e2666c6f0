#include "DataBinaryPool.h"

#include "Binary.h"

#include <iostream>

DataBinaryPool::DataBinaryPool() = default;

DataBinaryPool::~DataBinaryPool() {
    std::cout << "[Dispose binaryPool]" << std::endl;
}

void DataBinaryPool::addData(std::string key, Binary* binary) {
    ++count;
    binaries.put(key, binary);
}

std::string DataBinaryPool::toString() const {
    // The count's label is the report's established wording, although these are binaries.
    std::string text = "DataBinaryPool {\n    num3dObjects = " + std::to_string(count) + "\n";
    for (const auto& [key, binary] : binaries.map()) {
        text += entryLine("    ", key, binary->toString());
    }
    return text + "}\n";
}
