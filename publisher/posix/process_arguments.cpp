#include "publisher/process_arguments.h"

namespace vorthmere::publish {

std::vector<std::string> processArguments(int argc, char** argv) {
    return {argv + 1, argv + argc};
}

}  // namespace vorthmere::publish
