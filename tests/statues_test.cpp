// Checkpoint statues and their menu in the authored rooms: resting, the save it writes, the menu
// unfolding above the statue, its three buttons by mouse, pad and keyboard, and its folding.
#include "interactables/statues.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "interactables/checkpoint_menu.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "player/save.h"
#include "support/fixture.h"
#include "support/game_fixture.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_lifecycle.h"

namespace {

const char* const kStatueFolder = "Assets/Sprites/Objects/Checkpoint";

const char* const kRestedInRoom2 =
    "////////////////////\nCHECKPOINT DATA :\ncheckpointID 0\nroomID 2\n"
    "////////////////////\nABILITIES DATA :\ncanDash 0\ncanRun 0\nCanCreatePlatform 0\n"
    "potionCount 1\n";

class StatueTest : public GameRoomTest {
protected:
    void SetUp() override {
        GameRoomTest::SetUp();
        GetPlayer().godMode = 1;  // the rooms' enemies are not what these tests are about
    }

    // Room 2, the hero standing at the given distance from its statue.
    void StandInRoom2(float offset = 0) {
        Enter(2);
        statue = CheckpointSpawnPosition(0);
        SetPlayerPosition(statue + sf::Vector2f(offset, -4));
        Update(20);
        ASSERT_TRUE(PlayerStanding());
    }

    static int InteractKey() { return Settings().bindings[BINDING_INTERACT]; }

    // A quick tap of the INTERACT key, already released when the frame reads its events;
    // returns what was printed.
    std::string PressInteract() {
        testing::internal::CaptureStdout();
        InputScriptPressKey(sf::Keyboard::Key(InteractKey()));
        InputScriptReleaseKey(sf::Keyboard::Key(InteractKey()));
        Frames(1);
        return testing::internal::GetCapturedStdout();
    }

    // Rests at the statue of room 2 and lets the menu unfold completely.
    void OpenMenuInRoom2() {
        StandInRoom2();
        PressInteract();
        ASSERT_EQ(Overlays().checkpointMenuOpen, 1);
        Update(90);
        ASSERT_EQ(GetCheckpointMenu().opening, 0);
    }

    // Where a world point shows on the 1920 x 1080 window.
    static sf::Vector2f ToScreen(sf::Vector2f world) {
        const sf::View& view = *GameView();
        sf::Vector2f topLeft = view.getCenter() - view.getSize() / 2.0f;
        return (world - topLeft) * (1920.0f / view.getSize().x);
    }

    std::string ClickButton(int button) {
        sf::Vector2f screen = ToScreen(GetCheckpointMenu().buttons[button].shape->getPosition());
        EXPECT_TRUE(sf::FloatRect(0, 0, 1920, 1080).contains(screen));
        testing::internal::CaptureStdout();
        ClickAt(screen.x, screen.y);
        return testing::internal::GetCapturedStdout();
    }

    std::string PadConfirm() {
        testing::internal::CaptureStdout();
        InputScriptPressButton(0);
        Frames(1);
        return testing::internal::GetCapturedStdout();
    }

    void PadMove(float position) {
        InputScriptMoveAxis(sf::Joystick::PovY, position);
        InputScriptMoveAxis(sf::Joystick::PovY, 0);
        Frames(1);
    }

    static bool MenuFreed() {
        const WorldMenu& menu = GetCheckpointMenu();
        for (const Button& button : menu.buttons) {
            if (button.shape || button.text) return false;
        }
        return !menu.font && Overlays().checkpointMenuOpen == 0;
    }

    sf::Vector2f statue;
};

struct RestCase {
    const char* name;
    float offset;      // from the statue
    bool inTheAir;     // lifted off the floor just before the press
    int consoleOpen;   // the debug console's flag
    bool holdAndJump;  // INTERACT held while JUMP is pressed, instead of pressing INTERACT
    bool rests;        // saved and healed
    bool opensMenu;
};

}  // namespace

TEST_F(StatueTest, RestingSavesHealsAndOpensTheMenuOnlyOnTheGroundAndWithoutTheConsole) {
    const RestCase cases[] = {
        {"at the statue", 0, false, 0, false, true, true},
        {"holding INTERACT while pressing JUMP", 0, false, 0, true, true, true},
        {"with the console open", 0, false, 1, false, true, false},
        {"in the air", 0, true, 0, false, false, false},
        {"out of the statue's reach", -400, false, 0, false, false, false},
    };
    for (const RestCase& c : cases) {
        SCOPED_TRACE(c.name);
        FreeCheckpointMenu();
        Overlays() = OverlayFlags();
        WriteNewGameSave();
        StandInRoom2(c.offset);
        GetPlayer().life = 20;
        if (c.inTheAir) {
            SetPlayerPosition(statue - sf::Vector2f(0, 60));
            Update(1);
            ASSERT_FALSE(PlayerStanding());
        }
        Overlays().consoleOpen = c.consoleOpen;
        std::string log;
        if (c.consoleOpen) {
            // The console takes the keyboard; the pad's INTERACT still reaches the statue.
            testing::internal::CaptureStdout();
            InputScriptPressButton(1);
            Frames(1);
            log = testing::internal::GetCapturedStdout();
        } else if (c.holdAndJump) {
            InputScriptKey(InteractKey(), true);
            testing::internal::CaptureStdout();
            InputScriptPressKey(sf::Keyboard::Key(Settings().bindings[BINDING_JUMP]));
            Frames(1);
            log = testing::internal::GetCapturedStdout();
            InputScriptKey(InteractKey(), false);
            InputScriptReleaseKey(sf::Keyboard::Key(Settings().bindings[BINDING_JUMP]));
            EXPECT_EQ(GetPlayer().body.jumpRequest, 0);
            EXPECT_NE(GetPlayer().body.state, PLAYER_JUMP);
        } else {
            log = PressInteract();
        }
        EXPECT_EQ(log.find("OUI !") != std::string::npos, c.rests);
        EXPECT_EQ(GetPlayer().life == 100, c.rests);
        EXPECT_EQ(Save().roomID, c.rests ? 2 : 1);
        // The whole file, rewritten at once: the checkpoint and the abilities unchanged.
        EXPECT_EQ(ReadFile(kSavePath) == kRestedInRoom2, c.rests);
        EXPECT_FALSE(std::filesystem::exists(std::string(kSavePath) + ".tmp"));
        EXPECT_EQ(Overlays().checkpointMenuOpen, c.opensMenu ? 1 : 0);
        EXPECT_EQ(GetPlayer().body.controllable, c.opensMenu ? 0 : 1 - c.consoleOpen);
    }
}

TEST_F(StatueTest, TwoOverlappingSpawnsBothSaveInOrderAndOnlyTheFirstOpensTheMenu) {
    StandInRoom2();
    Room& room = CurrentRoom();
    const Trigger* first = nullptr;
    for (const Trigger& trigger : room.triggers) {
        if (trigger.name == "Interaction spawn") first = &trigger;
    }
    ASSERT_NE(first, nullptr);
    ASSERT_EQ(first->value, 0);
    Trigger second = *first;
    second.value = 1;
    room.triggers.push_back(second);
    room.checkpointSpawns.push_back({statue + sf::Vector2f(-150, 0), 1});

    std::string log = PressInteract();
    EXPECT_NE(log.find("OUI !OUI !"), std::string::npos);
    EXPECT_EQ(Save().checkpointID, 1);
    EXPECT_NE(ReadFile(kSavePath).find("checkpointID 1\nroomID 2\n"), std::string::npos);
    EXPECT_EQ(GetCheckpointMenu().ownerPosition, statue);
    EXPECT_EQ(GetCheckpointMenu().anchor, statue + sf::Vector2f(280, -365));
}

TEST_F(StatueTest, WalkingToTheStatueAndPressingInteractUnfoldsTheMenu) {
    StandInRoom2(-450);
    ASSERT_EQ(Statues().size(), 1u);
    Frames(2);
    EXPECT_EQ(Statues()[0].showOutline, 0);

    InputScriptKey(Settings().bindings[BINDING_RIGHT], true);
    for (int i = 0; i < 120 && !Statues()[0].showOutline; i++) Frames(1);
    InputScriptKey(Settings().bindings[BINDING_RIGHT], false);
    ASSERT_EQ(Statues()[0].showOutline, 1) << "the hero never reached the statue";
    Frames(3);

    std::string log = PressInteract();
    EXPECT_NE(log.find("OUI !"), std::string::npos);
    const WorldMenu& menu = GetCheckpointMenu();
    ASSERT_EQ(Overlays().checkpointMenuOpen, 1);
    EXPECT_EQ(menu.opening, 1);
    EXPECT_LT(menu.buttons[0].shape->getScale().y, 0.5f);  // still nearly flat

    // Unfolding: all three grow together at the anchor, then two slide down under the first.
    float grown = 0;
    for (int i = 0; i < 30; i++) {
        Frames(1);
        for (const Button& button : menu.buttons) {
            EXPECT_EQ(button.shape->getScale(), menu.buttons[0].shape->getScale());
        }
        grown = std::max(grown, menu.buttons[0].shape->getScale().y);
    }
    EXPECT_GT(grown, 0.9f);
    for (int i = 0; i < 90 && menu.opening; i++) Frames(1);
    ASSERT_EQ(menu.opening, 0);
    Frames(2);
    sf::Vector2f anchor = menu.anchor;
    EXPECT_EQ(anchor, menu.ownerPosition + sf::Vector2f(280, -365));
    for (int i = 0; i < CHECKPOINT_BUTTON_COUNT; i++) {
        sf::Vector2f expected = anchor + sf::Vector2f(0, 65.0f * float(i));
        EXPECT_NEAR(menu.buttons[i].shape->getPosition().x, expected.x, 0.01f);
        EXPECT_NEAR(menu.buttons[i].shape->getPosition().y, expected.y, 0.01f);
        EXPECT_EQ(menu.buttons[i].text->getPosition(), menu.buttons[i].shape->getPosition());
        float scale = i == CHECKPOINT_TELEPORT ? 1.2f : 1.0f;
        EXPECT_EQ(menu.buttons[i].shape->getScale(), sf::Vector2f(scale, scale));
    }
    EXPECT_EQ(GetPlayer().body.controllable, 0);

    // The menu is drawn over the world where the statue stands: its middle is not the room.
    app.window->clear();
    DrawGame(*app.window);
    sf::Texture shot;
    ASSERT_TRUE(shot.create(1920, 1080));
    shot.update(*app.window);
    sf::Image image = shot.copyToImage();
    std::filesystem::create_directories(std::string(OV_SOURCE_DIR) + "/tests/out");
    image.saveToFile(std::string(OV_SOURCE_DIR) + "/tests/out/checkpoint_menu.png");
    sf::Vector2f middle = ToScreen(menu.buttons[CHECKPOINT_SAVE].shape->getPosition());
    sf::Color fill = menu.buttons[CHECKPOINT_SAVE].shape->getFillColor();
    sf::Vector2f corner = middle + sf::Vector2f(-80, -20);  // inside the button, off its label
    sf::Color seen = image.getPixel(unsigned(corner.x), unsigned(corner.y));
    if (!menu.buttonTexture) {
        EXPECT_EQ(seen, fill);
    }
}

TEST_F(StatueTest, EachButtonAnswersTheMouseAndThePad) {
    const struct {
        const char* name;
        std::function<std::string()> act;
        int selected;
        const char* printed;
    } cases[] = {
        {"click TELEPORT", [this] { return ClickButton(CHECKPOINT_TELEPORT); }, CHECKPOINT_TELEPORT,
         "TP Pressed\n"},
        {"click SAVE", [this] { return ClickButton(CHECKPOINT_SAVE); }, CHECKPOINT_SAVE,
         "REST Pressed\n"},
        {"pad down once, confirm",
         [this] {
             PadMove(-100);
             return PadConfirm();
         },
         CHECKPOINT_SAVE, "REST Pressed\n"},
        {"pad up at the top stays, confirm",
         [this] {
             PadMove(100);
             return PadConfirm();
         },
         CHECKPOINT_TELEPORT, "TP Pressed\n"},
        {"pad down three times stops at LEAVE",
         [this] {
             for (int i = 0; i < 3; i++) PadMove(-100);
             return std::string();
         },
         CHECKPOINT_LEAVE, ""},
    };
    OpenMenuInRoom2();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MoveCheckpointSelection(-CHECKPOINT_BUTTON_COUNT);
        std::string printed = c.act();
        EXPECT_EQ(GetCheckpointMenu().selected, c.selected);
        EXPECT_NE(printed.find(c.printed), std::string::npos);
        EXPECT_EQ(Overlays().checkpointMenuOpen, 1);
        // TELEPORT folds the menu under the map; closed, the map leaves the menu to fold.
        bool teleport = c.selected == CHECKPOINT_TELEPORT && !printed.empty();
        EXPECT_EQ(GetCheckpointMenu().closing, teleport ? 1 : 0);
        EXPECT_EQ(Overlays().mapOpen, teleport ? 1 : 0);
        if (teleport) {
            InputScriptPressKey(sf::Keyboard::M);
            Frames(1);
            InputScriptReleaseKey(sf::Keyboard::M);
            Update(60);
            ASSERT_EQ(Overlays().checkpointMenuOpen, 0);
            PressInteract();
            Update(90);
        }
    }
}

TEST_F(StatueTest, TheMenuFoldsAndFreesItsButtonsOnLeaveEscapeOrDistance) {
    const struct {
        const char* name;
        std::function<void()> act;
        bool folds;
    } cases[] = {
        {"LEAVE clicked", [this] { ClickButton(CHECKPOINT_LEAVE); }, true},
        {"LEAVE on the pad",
         [this] {
             PadMove(-100);
             PadMove(-100);
             PadConfirm();
         },
         true},
        {"Escape",
         [this] {
             InputScriptPressKey(sf::Keyboard::Escape);
             Frames(1);
             InputScriptReleaseKey(sf::Keyboard::Escape);
         },
         true},
        {"201 px away", [this] { SetPlayerPosition(statue + sf::Vector2f(201, -4)); }, true},
        {"200 px away", [this] { SetPlayerPosition(statue + sf::Vector2f(-200, -4)); }, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FreeCheckpointMenu();
        Overlays() = OverlayFlags();
        OpenMenuInRoom2();
        c.act();
        Update(45);
        EXPECT_EQ(MenuFreed(), c.folds);
        EXPECT_EQ(GetPlayer().body.controllable, c.folds ? 1 : 0);
        // Drawing a folded menu draws nothing and touches nothing freed.
        Frames(1);
    }
}

TEST_F(StatueTest, OnlyTheCheckpointRoomsBeyondTheFirstShowStatues) {
    // Pictures of our own in the sandbox, so the statues' placing shows whatever the art is.
    for (const char* name : {"Forest-Statue.png", "Forest-StatueOutline.png"}) {
        std::filesystem::path path = std::filesystem::path(kStatueFolder) / name;
        std::filesystem::create_directories(kStatueFolder);
        std::filesystem::remove(path);  // never write through a link into the repository
        sf::Image image;
        image.create(16, 32, sf::Color::Red);
        ASSERT_TRUE(image.saveToFile(path.string()));
    }
    const struct {
        int room;
        size_t statues;
    } cases[] = {{1, 0}, {2, 1}, {4, 1}, {11, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE("room " + std::to_string(c.room));
        Enter(c.room);
        EXPECT_EQ(Statues().size(), c.statues);
        if (c.room == 1) {
            EXPECT_FALSE(CurrentRoom().checkpointSpawns.empty());
        }
        for (size_t i = 0; i < Statues().size(); i++) {
            sf::Vector2f feet = CheckpointSpawnPosition(int(i));
            for (const SpritePtr* sprite :
                 {&Statues()[i].statueSprite, &Statues()[i].outlineSprite}) {
                ASSERT_NE((*sprite)->getTexture(), nullptr);
                // Three times the picture, standing on its bottom centre.
                sf::FloatRect bounds = (*sprite)->getGlobalBounds();
                EXPECT_EQ(bounds, sf::FloatRect(feet.x - 24, feet.y - 96, 48, 96));
            }
        }
    }
}

TEST_F(StatueTest, AMissingPictureLeavesTheStatueInvisibleAndSaysSo) {
    for (const char* name : {"City-Statue.png", "City-StatueOutline.png"}) {
        std::filesystem::remove(std::filesystem::path(kStatueFolder) / name);  // the sandbox's link
    }
    CleanupRoom();
    testing::internal::CaptureStdout();
    LoadStatueTextures(REGION_CITY);
    AddStatue({500, 500});
    std::string log = testing::internal::GetCapturedStdout();
    EXPECT_NE(log.find("\nerror function CreateSprite : no texture\n"), std::string::npos);
    ASSERT_EQ(Statues().size(), 1u);
    EXPECT_EQ(Statues()[0].statueSprite->getTexture(), nullptr);
    EXPECT_EQ(Statues()[0].outlineSprite->getTexture(), nullptr);
    Frames(2);  // drawn as nothing
}

TEST_F(StatueTest, LoadingCleaningAndReloadingAStatueRoomKeepsOneStatue) {
    for (int round = 0; round < 3; round++) {
        Enter(round % 2 ? 4 : 2);
        ASSERT_EQ(Statues().size(), 1u);
        Frames(1);
        CleanupRoom();
        EXPECT_TRUE(Statues().empty());
    }
    Enter(4);
    EXPECT_EQ(Statues().size(), 1u);
}
