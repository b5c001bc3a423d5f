// What the fragments of C++ in the documents are run in; docs/testing.md tells which is which.
#pragma once

#include "TemporaryDirectory.h"

#include <quillet-simulator/Machine.h>
#include <quillet/Quillet.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

/// "in-function": COM is initialised, and the current directory is one of its own with the files that the
/// document describes.
class DocumentTest : public testing::Test {
  protected:
    DocumentTest();
    ~DocumentTest() override;
    void TakeFilesOf(const char* document);

  private:
    std::filesystem::path m_before;
    std::filesystem::path m_files;
    quillet::tests::TemporaryDirectory m_folder;
};

/// "connected": besides, `quillet` is connected to `machine`, the one that ships with the simulator.
class ConnectedDocumentTest : public DocumentTest {
  protected:
    ConnectedDocumentTest();
    ~ConnectedDocumentTest() override;

    std::shared_ptr<quillet::simulator::Machine> machine;
    CQuillet quillet;

  private:
    quillet::simulator::Registration m_registration;
};
