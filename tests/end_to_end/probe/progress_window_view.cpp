#include "tests/end_to_end/probe/progress_window_view.h"

namespace vorthmere::probe {

bool ProgressWindowView::readOutcome(Texts& texts) const {
    texts.detail = windowText(detail());
    const bool succeeded = texts.detail == L"Kelvane is relaunching now." ||
                           texts.detail == L"The portable update verification completed successfully.";
    if (!succeeded && !IsWindowVisible(closeButton())) return false;
    // The texts of a failure may have arrived between the two reads.
    texts = read();
    return true;
}

}  // namespace vorthmere::probe
