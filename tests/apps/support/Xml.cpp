#include "support/Xml.h"

#include <regex>
#include <set>
#include <vector>

namespace keladjust::test {

std::string whyNotXml(const std::string& text) {
    static const std::regex declaration(R"(^<\?xml version="1\.0" encoding="UTF-8"\?>\s*)");
    static const std::regex piece(
        R"(^(?:<(/?)([A-Za-z][\w.-]*)((?:\s+[A-Za-z][\w:.-]*="[^"<]*")*)\s*(/?)>|([^<]+)))");
    static const std::regex attribute(R"re(([A-Za-z][\w:.-]*)="([^"]*)")re");
    static const std::regex reference("&(?!(amp|lt|gt|quot|apos);)");

    std::smatch match;
    if (!std::regex_search(text, match, declaration)) return "no declaration";
    auto at = match.suffix().first;
    std::vector<std::string> open;
    bool begun = false;
    for (; at != text.end(); at = match.suffix().first) {
        if (!std::regex_search(at, text.end(), match, piece)) {
            return "no tag at: " + std::string(at, text.end()).substr(0, 60);
        }
        const std::string name = match[2], attributes = match[3], content = match[5];
        if (std::regex_search(match[0].first, match[0].second, reference)) {
            return "a bare & in " + match[0].str();
        }
        if (name.empty()) {
            if (open.empty() && content.find_first_not_of(" \n\t") != std::string::npos) {
                return "text outside the root: " + content;
            }
            continue;
        }
        std::set<std::string> names;
        for (std::sregex_iterator a(attributes.begin(), attributes.end(), attribute), none;
             a != none; ++a) {
            if (!names.insert((*a)[1]).second) return "twice: " + a->str() + " in " + name;
        }
        if (match[1].length() > 0) {
            if (open.empty() || open.back() != name) return "</" + name + "> closes nothing";
            open.pop_back();
        } else {
            if (open.empty() && begun) return "a second root: " + name;
            begun = true;
            if (match[4].length() == 0) open.push_back(name);
        }
    }
    if (!open.empty()) return open.back() + " is not closed";
    return begun ? "" : "no root";
}

}  // namespace keladjust::test
