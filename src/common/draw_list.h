// A short list of drawables of mixed kinds, drawn in insertion order.
#pragma once

#include <SFML/Graphics.hpp>
#include <memory>

enum DrawListKind { DRAW_LIST_SPRITE = 0, DRAW_LIST_CIRCLE = 1, DRAW_LIST_RECTANGLE = 2 };

struct DrawListEntry {
    sf::Drawable* handle = nullptr;  // not owned
    int kind = DRAW_LIST_SPRITE;
};

struct DrawListNode {
    DrawListEntry* entry = nullptr;  // not owned
    std::unique_ptr<DrawListNode> next;
};

struct DrawList {
    std::unique_ptr<DrawListNode> head;
    int count = 0;
};

// Appends at the tail.
void AddToDrawList(DrawList& list, DrawListEntry* entry);
// Draws each entry by its kind; unknown kinds are skipped.
void DrawDrawList(const DrawList& list, sf::RenderTarget& target);
void ClearDrawList(DrawList& list);
