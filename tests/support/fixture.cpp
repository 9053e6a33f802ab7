#include "support/fixture.h"

#include <unistd.h>

#include <SFML/Window/Context.hpp>
#include <fstream>
#include <memory>
#include <sstream>

#include "app/input.h"

namespace fs = std::filesystem;

namespace {

// Folders are made anew and the game's files linked into them, so a test can add files of its
// own anywhere; the folders the game writes to are copied instead.
void PopulateAssets(const fs::path& source, const fs::path& target) {
    fs::create_directories(target);
    for (const fs::directory_entry& entry : fs::directory_iterator(source)) {
        std::string name = entry.path().filename().string();
        fs::path destination = target / name;
        if (name == "Settings" || name == "Saves") {
            fs::copy(entry.path(), destination, fs::copy_options::recursive);
        } else if (entry.is_directory()) {
            PopulateAssets(entry.path(), destination);
        } else {
            fs::create_symlink(entry.path(), destination);
        }
    }
}

}  // namespace

void SandboxTest::SetUp() {
    previousDirectory = fs::current_path();
    char pattern[] = "/tmp/ombrith-test-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    sandbox = pattern;
    PopulateAssets(fs::path(OV_SOURCE_DIR) / "Assets", sandbox / "Assets");
    fs::current_path(sandbox);
    InputStartScript();
}

void SandboxTest::TearDown() {
    InputStopScript();
    fs::current_path(previousDirectory);
    fs::remove_all(sandbox);
}

std::string SandboxTest::ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

void SandboxTest::WriteFile(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

void AppTest::SetUp() {
    SandboxTest::SetUp();
    StartApp(app);
}

void AppTest::TearDown() {
    ShutDownApp(app);
    SandboxTest::TearDown();
}

void AppTest::Frames(int count) {
    for (int i = 0; i < count && app.window && app.window->isOpen(); i++) RunFrame(app);
}

void AppTest::MoveTo(float x, float y) {
    InputScriptMoveMouse({int(x), int(y)});
    Frames(1);
}

void AppTest::ClickAt(float x, float y, sf::Mouse::Button button) {
    InputScriptClick(button, {int(x), int(y)});
    Frames(1);
}

namespace {

// One graphics context kept for the whole run, so the system's GL driver is loaded once and not
// unloaded between tests (an unloaded driver's own allocations would show up as anonymous leaks).
class GraphicsEnvironment : public ::testing::Environment {
public:
    void SetUp() override { context = std::make_unique<sf::Context>(); }
    void TearDown() override { context.reset(); }

private:
    std::unique_ptr<sf::Context> context;
};

[[maybe_unused]] ::testing::Environment* const graphics =
    ::testing::AddGlobalTestEnvironment(new GraphicsEnvironment);

}  // namespace
