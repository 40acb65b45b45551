#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace camsim {

/// One flat JSON object on one line.
class JsonLine
{
public:
    JsonLine &add(std::string_view key, std::string_view text);
    JsonLine &add(std::string_view key, const char *text)
    {
        return add(key, std::string_view(text));
    }
    JsonLine &add(std::string_view key, bool value) { return raw(key, value ? "true" : "false"); }
    JsonLine &add(std::string_view key, std::integral auto value)
    {
        return raw(key, std::to_string(value));
    }
    JsonLine &add(std::string_view key, double value) { return raw(key, std::to_string(value)); }

    std::string text() const { return m_text + "}"; }

private:
    JsonLine &raw(std::string_view key, std::string_view value);

    std::string m_text = "{";
};

} // namespace camsim
