#include "Tests/Support/TemporaryFolder.h"

#include "RecordCore/Model/Uuid.h"

TemporaryFolder::TemporaryFolder() :
    folder(std::filesystem::temp_directory_path() / ("ombrel-test-" + RecordCore::Uuid::fresh().text())) {
    std::filesystem::create_directories(folder);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}
