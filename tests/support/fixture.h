// Test fixtures: a private copy of the game's writable files, scripted input, and a running app.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "app/app.h"

// Runs each test in its own folder holding the game's assets, with copies of the files the game
// writes, so a test never touches the repository's settings; input comes from the script.
class SandboxTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    static std::string ReadFile(const std::string& path);
    static void WriteFile(const std::string& path, const std::string& text);

    std::filesystem::path sandbox;

private:
    std::filesystem::path previousDirectory;
};

// The real program started in the sandbox: window, title menu, gamepad report.
class AppTest : public SandboxTest {
protected:
    void SetUp() override;
    void TearDown() override;

    void Frames(int count);
    // One mouse move and a left click at menu coordinates, then one frame.
    void ClickAt(float x, float y, sf::Mouse::Button button = sf::Mouse::Left);
    void MoveTo(float x, float y);

    AppWindow app;
};
