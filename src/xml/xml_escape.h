#pragma once

#include <string>
#include <string_view>

// Appends the text as the writer stores it: '&', '<', and every byte that is not printable ASCII
// becomes a decimal reference such as "&#229;".
void EscapeXML(std::string_view text, std::string& out);

// Expands numeric references, decimal and (after a lower-case x) hexadecimal, to one byte each: the
// low 8 bits of the number. One more byte after the digits is consumed, the ';' as a rule. A
// reference without any digit is no reference and stands as it is, as does a '&' without '#'.
std::string UnescapeXML(std::string_view text);
