#include "Frame.h"

DocumentTest::DocumentTest() : m_before(std::filesystem::current_path()) {
    std::filesystem::current_path(m_folder.Path());
}

DocumentTest::~DocumentTest() {
    std::filesystem::current_path(m_before);
}

void DocumentTest::TakeFilesOf(const char* document) {
    const std::filesystem::path files = std::filesystem::path(QUILLET_DOCUMENT_FILES) / document;
    if (std::filesystem::exists(files)) {
        std::filesystem::copy(files, m_folder.Path());
    }
}

ConnectedDocumentTest::ConnectedDocumentTest()
    : machine(quillet::simulator::Machine::BuiltIn()), m_registration(machine) {
    EXPECT_EQ(quillet.InitQuillet(), S_OK);
}

ConnectedDocumentTest::~ConnectedDocumentTest() {
    quillet.UninitQuillet();
}
