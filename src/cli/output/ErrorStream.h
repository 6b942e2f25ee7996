#pragma once

#include <streambuf>
#include <string>

class Console;

/// As long as it lives, what is written to std::cerr, and what Qt warns of, becomes messages of the console.
class ErrorStream : public std::streambuf {
public:
    explicit ErrorStream(Console& console);
    ErrorStream(const ErrorStream&) = delete;
    ErrorStream& operator=(const ErrorStream&) = delete;
    ~ErrorStream() override;

protected:
    int_type overflow(int_type character) override;

private:
    Console& m_console;
    std::streambuf* const m_before;
    std::string m_line;
};
