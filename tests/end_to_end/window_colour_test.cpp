#include <gmock/gmock.h>

#include <array>
#include <fstream>
#include <stdexcept>

#include "tests/end_to_end/support/window_fixture.h"

namespace vorthmere::end_to_end {
namespace {

constexpr Milliseconds kDisplayLimit{30'000};

using Colour = std::array<int, 3>;

constexpr Colour kBackground{8, 15, 29};
constexpr Colour kBanner{55, 228, 235};
constexpr Colour kText{220, 232, 242};
constexpr Colour kBar{31, 209, 219};
constexpr Colour kBarBackground{18, 32, 52};

/// A picture of the window's client area, taken from the display.
class Picture {
public:
    explicit Picture(const std::filesystem::path& ppm) {
        std::ifstream file(ppm, std::ios::binary);
        std::string format;
        int maximum = 0;
        file >> format >> width_ >> height_ >> maximum;
        file.get();
        if (format != "P6" || maximum != 255) throw std::runtime_error("not a picture: " + ppm.string());
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
        if (bytes_.size() != static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_) * 3)
            throw std::runtime_error("an incomplete picture: " + ppm.string());
    }

    [[nodiscard]] Colour at(int x, int y) const {
        const auto first =
            (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)) * 3;
        const auto part = [&](std::size_t index) {
            return static_cast<int>(static_cast<unsigned char>(bytes_.at(first + index)));
        };
        return {part(0), part(1), part(2)};
    }

    [[nodiscard]] int count(const ScreenArea& area, const Colour& colour) const {
        int found = 0;
        for (int y = area.top; y < area.top + area.height; ++y)
            for (int x = area.left; x < area.left + area.width; ++x)
                if (at(x, y) == colour) ++found;
        return found;
    }

private:
    int width_ = 0;
    int height_ = 0;
    std::string bytes_;
};

/// Has its own display, so that no other window covers the one under test.
class WindowColourTest : public WindowTest {
protected:
    void SetUp() override {
        const std::string number = display.readLine(kDisplayLimit);
        ASSERT_NE(number, "");
        displayVariable = "DISPLAY=:" + number;
        useEnvironment({displayVariable});
    }

    [[nodiscard]] Picture takePicture(const ScreenArea& area) const {
        ProcessOptions options;
        options.environment = {displayVariable};
        options.outputFile = "/dev/null";
        const std::filesystem::path file = pictures.path() / "window.ppm";
        ChildProcess import({"/usr/bin/import", "-window", "root", "-crop",
                             std::to_string(area.width) + "x" + std::to_string(area.height) + "+" +
                                 std::to_string(area.left) + "+" + std::to_string(area.top),
                             "+repage", "-depth", "8", file.string()},
                            options);
        EXPECT_EQ(import.wait(kDisplayLimit).exitCode, 0);
        return Picture(file);
    }

    /// Takes pictures until one is as wanted, because the window paints itself after it has answered.
    [[nodiscard]] Picture takePictureWhen(UpdaterWindow& window, const std::function<bool(const Picture&)>& wanted) {
        const ScreenArea area = window.clientArea();
        for (int attempt = 0; attempt < 50; ++attempt) {
            Picture picture = takePicture(area);
            if (wanted(picture)) return picture;
        }
        return takePicture(area);
    }

    ChildProcess display{{"/usr/bin/Xvfb", "-displayfd", "1", "-noreset", "-screen", "0", "1280x1024x24"},
                         {.currentFolder = {}, .outputFile = {}, .environment = {}, .errorFile = "/dev/null"}};
    std::string displayVariable;
    update::testing::TemporaryFolder pictures;
};

constexpr ScreenArea kBannerArea{28, 24, 450, 38};
constexpr ScreenArea kStatusArea{30, 76, 450, 26};
constexpr ScreenArea kDetailArea{30, 145, 350, 46};
constexpr ScreenArea kButtonInside{388, 169, 88, 22};

TEST_F(WindowColourTest, WorkingWindowHasItsColours) {
    OpenGame game;
    UpdaterWindow window = openBusyWindow(game);
    const Picture picture = takePictureWhen(window, [](const Picture& seen) { return seen.at(400, 120) == kBar; });
    for (const auto& [x, y] : {std::pair(2, 2), {515, 2}, {2, 235}, {515, 235}, {470, 40}, {470, 85}})
        EXPECT_EQ(picture.at(x, y), kBackground) << x << "," << y;
    EXPECT_EQ(picture.at(34, 120), kBar);
    EXPECT_EQ(picture.at(400, 120), kBar);
    EXPECT_EQ(picture.at(470, 120), kBarBackground);
    EXPECT_GT(picture.count(kBannerArea, kBanner), 300);
    EXPECT_GT(picture.count(kStatusArea, kText), 100);
    EXPECT_GT(picture.count(kDetailArea, kText), 100);
    // The button is not there yet.
    EXPECT_EQ(picture.count(kButtonInside, kBackground), kButtonInside.width * kButtonInside.height);
    game.close();
    EXPECT_EQ(window.exitCode(), "0x00000000");
}

TEST_F(WindowColourTest, DetailTextLeavesTheButtonWhole) {
    // A window on its own display may lose the focus, but its picture does not depend on that.
    UpdaterWindow window = openWindow(failingCommand());
    ASSERT_TRUE(window.waitUntil([](const WindowContent& content) { return content.buttonVisible; }).buttonVisible);
    const Picture picture =
        takePictureWhen(window, [](const Picture& seen) { return seen.count(kButtonInside, kBackground) == 0; });
    EXPECT_EQ(picture.count(kButtonInside, kBackground), 0);
    EXPECT_EQ(picture.count(kButtonInside, kText), 0);
    EXPECT_GT(picture.count(kDetailArea, kText), 200);
    window.tell("click-button");
    EXPECT_EQ(window.exitCode(), "0x0000000B");
}

}  // namespace
}  // namespace vorthmere::end_to_end
