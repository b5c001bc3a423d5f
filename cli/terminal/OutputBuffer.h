// What a command writes, on its way to a standard stream.
#pragma once

#include <functional>
#include <streambuf>
#include <string>
#include <string_view>

namespace quilletctl {

/// How writing ended.
enum class Written {
    All,
    ReaderLeft, ///< the other end of a pipe is closed
    Failed
};

/// Collects what is written and hands it on in large pieces. A reader who leaves early, such as `head`, has
/// seen what he wanted: what comes after is dropped, and the command goes on to its end. Anything else that
/// cannot be written fails the stream.
class OutputBuffer final : public std::streambuf {
  public:
    explicit OutputBuffer(std::function<Written(std::string_view)> write);
    /// Hands on what is left.
    ~OutputBuffer() override;
    OutputBuffer(const OutputBuffer&) = delete;
    OutputBuffer& operator=(const OutputBuffer&) = delete;

  protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* bytes, std::streamsize count) override;
    int sync() override;

  private:
    std::function<Written(std::string_view)> m_write;
    std::string m_pending;
    bool m_hasReader = true;
};

} // namespace quilletctl
