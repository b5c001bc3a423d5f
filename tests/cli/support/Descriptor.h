// A file descriptor to read a text from, as a shell hands one to a program.
#pragma once

#include <string>

namespace quillet::tests {

class Descriptor {
  public:
    /// Reads as this text, and then as ended.
    explicit Descriptor(const std::string& text);
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    /// Its number, for a command line.
    std::string Number() const { return std::to_string(m_descriptor); }
    /// What nobody has read yet.
    std::string Rest();

  private:
    int m_descriptor = -1;
};

} // namespace quillet::tests
