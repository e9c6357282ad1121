#include "publisher/sentences.h"

namespace vorthmere::publish {

std::string joinSentences(const std::vector<std::string>& sentences) {
    constexpr std::size_t kMostShown = 50;
    std::string text;
    for (std::size_t i = 0; i < sentences.size() && i < kMostShown; ++i) {
        if (i != 0) text += '\n';
        text += sentences[i];
    }
    if (sentences.size() > kMostShown)
        text += "\nThere are " + std::to_string(sentences.size() - kMostShown) + " more like these.";
    return text;
}

}  // namespace vorthmere::publish
