#ifndef KELADJUST_TESTS_XML_H
#define KELADJUST_TESTS_XML_H

#include <string>

namespace keladjust::test {

/// Why a text is not well-formed XML of the plain kind: a declaration, then elements with quoted
/// attributes and the five entities; no comments, sections or document types. Empty if it is.
std::string whyNotXml(const std::string& text);

}  // namespace keladjust::test

#endif
