#include "Frame.h"

// A path without a drive is one on the drive of the current directory, so it is completed before that
// changes.
DocumentTest::DocumentTest()
    : m_before(std::filesystem::current_path()), m_files(std::filesystem::absolute(QUILLET_DOCUMENT_FILES)) {
    std::filesystem::current_path(m_folder.Path());
}

DocumentTest::~DocumentTest() {
    std::filesystem::current_path(m_before);
}

void DocumentTest::TakeFilesOf(const char* document) {
    const std::filesystem::path files = m_files / document;
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
