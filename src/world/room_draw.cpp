#include "world/room_draw.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <vector>

#include "world/elevators.h"
#include "world/pixel_canvas.h"
#include "world/room.h"

namespace {

sf::Vector2f lastViewCenter;
int debugOverlay = 0;
sf::VertexArray shownPieces(sf::Quads);  // the pieces of one backdrop drawn this frame

// The part of the world the target shows, for skipping tiles that cannot be seen.
sf::FloatRect VisibleArea(const sf::RenderTarget& target) {
    const sf::View& view = target.getView();
    sf::Vector2f size = view.getSize();
    if (view.getRotation() != 0) {
        float side = std::hypot(size.x, size.y);
        size = {side, side};
    }
    sf::Vector2f center = view.getCenter();
    return sf::FloatRect(center.x - size.x / 2, center.y - size.y / 2, size.x, size.y);
}

// Whether a piece of the world need not be drawn, being hidden by what is drawn after it.
using HiddenTest = std::function<bool(const sf::FloatRect&)>;

void DrawPiecesInView(sf::RenderTarget& target, const sf::VertexArray& pieces,
                      sf::RenderStates states, const sf::FloatRect& visible,
                      const HiddenTest& hidden);

// A layer's still tiles as one picture, then its animated ones; or every tile, one by one, when
// the layer could not be made into a picture.
void DrawTiles(sf::RenderTarget& target, const RoomLayer& layer, const sf::FloatRect& visible) {
    if (!layer.still) {
        for (const sf::Sprite& tile : layer.tiles) {
            if (visible.intersects(tile.getGlobalBounds())) target.draw(tile);
        }
        return;
    }
    sf::RenderStates states(&layer.still->getTexture());
    states.transform.scale(CurrentRoom().scale, CurrentRoom().scale);
    DrawPiecesInView(target, layer.stillPieces, states, visible,
                     [](const sf::FloatRect&) { return false; });
    for (int index : layer.animatedTiles) {
        const sf::Sprite& tile = layer.tiles[size_t(index)];
        if (visible.intersects(tile.getGlobalBounds())) target.draw(tile);
    }
}

void DrawLayersNamed(sf::RenderTarget& target, const char* name) {
    sf::FloatRect visible = VisibleArea(target);
    for (const RoomLayer& layer : CurrentRoom().layers) {
        if (layer.name == name) DrawTiles(target, layer, visible);
    }
}

// Backdrops are cut into squares of this many texels; a square is kept if any texel shows.
constexpr int kPieceTexels = 16;
constexpr int kPieceRun = 8;

// Counts the texels whose alpha is at least `minAlpha`.
TexelTable CountTexels(const sf::Image& image, int minAlpha) {
    TexelTable table;
    table.width = int(image.getSize().x);
    table.height = int(image.getSize().y);
    int stride = table.width + 1;
    table.sums.assign(size_t(stride) * size_t(table.height + 1), 0);
    const sf::Uint8* pixels = image.getPixelsPtr();
    for (int y = 0; y < table.height; y++) {
        for (int x = 0; x < table.width; x++) {
            int counts = pixels[4 * (size_t(y) * size_t(table.width) + size_t(x)) + 3] >= minAlpha;
            table.sums[size_t((y + 1) * stride + x + 1)] =
                counts + table.sums[size_t((y + 1) * stride + x)] +
                table.sums[size_t(y * stride + x + 1)] - table.sums[size_t(y * stride + x)];
        }
    }
    return table;
}

int CountInside(const TexelTable& table, int left, int top, int right, int bottom) {
    auto at = [&](int x, int y) { return table.sums[size_t(y * (table.width + 1) + x)]; };
    return at(right, bottom) - at(left, bottom) - at(right, top) + at(left, top);
}

// The count in a rectangle no larger than the picture, anywhere: split where it wraps round the
// picture's edges, as a repeated texture does.
int CountWrapped(const TexelTable& table, int left, int top, int w, int h) {
    if (table.width == 0 || table.height == 0) return 0;
    left = (left % table.width + table.width) % table.width;
    top = (top % table.height + table.height) % table.height;
    int count = 0;
    for (int y0 = top, hLeft = h; hLeft > 0; y0 = 0) {
        int rows = std::min(hLeft, table.height - y0);
        for (int x0 = left, wLeft = w; wLeft > 0; x0 = 0) {
            int columns = std::min(wLeft, table.width - x0);
            count += CountInside(table, x0, y0, x0 + columns, y0 + rows);
            wLeft -= columns;
        }
        hLeft -= rows;
    }
    return count;
}

// Whether the solid texels of a nearer backdrop wholly cover `area` of the world.
bool HiddenBehind(const Background& nearer, const sf::FloatRect& area) {
    if (!nearer.sprite || nearer.solid.sums.empty()) return false;
    sf::FloatRect local = nearer.sprite->getInverseTransform().transformRect(area);
    sf::IntRect rect = nearer.sprite->getTextureRect();
    int x0 = int(std::floor(local.left)), x1 = int(std::ceil(local.left + local.width));
    int y0 = int(std::floor(local.top)), y1 = int(std::ceil(local.top + local.height));
    if (x0 < 0 || y0 < 0 || x1 > std::abs(rect.width) || y1 > std::abs(rect.height)) return false;
    int w = x1 - x0, h = y1 - y0;
    if (w > nearer.solid.width || h > nearer.solid.height) return false;
    int left = rect.width < 0 ? rect.left - x1 : rect.left + x0;
    int top = rect.height < 0 ? rect.top - y1 : rect.top + y0;
    return CountWrapped(nearer.solid, left, top, w, h) == w * h;
}

bool AllOpaque(const sf::Image& image) {
    const sf::Uint8* pixels = image.getPixelsPtr();
    size_t count = size_t(image.getSize().x) * image.getSize().y;
    for (size_t i = 0; i < count; i++) {
        if (pixels[4 * i + 3] != 255) return false;
    }
    return true;
}

// One square of the sprite's local frame, textured as the sprite itself would texture it.
void AppendPiece(sf::VertexArray& pieces, sf::FloatRect local, sf::IntRect rect,
                 sf::Vector2f size) {
    auto texel = [&](float x, float y) {
        return sf::Vector2f(float(rect.left) + x * float(rect.width) / size.x,
                            float(rect.top) + y * float(rect.height) / size.y);
    };
    float right = local.left + local.width, bottom = local.top + local.height;
    pieces.append({{local.left, local.top}, texel(local.left, local.top)});
    pieces.append({{right, local.top}, texel(right, local.top)});
    pieces.append({{right, bottom}, texel(right, bottom)});
    pieces.append({{local.left, bottom}, texel(local.left, bottom)});
}

// Cuts the picture that `rect` maps onto a sprite's frame (wrapping round the picture, either
// way) into pieces that hold a visible texel: squares of kPieceTexels, neighbours in a row
// joined, up to `maxRun` of them. A software renderer pays for every triangle it sets up as well
// as for every texel.
void CutIntoPieces(const sf::Image& image, sf::IntRect rect, bool opaque, int maxRun,
                   sf::VertexArray& pieces) {
    sf::Vector2f size(float(std::abs(rect.width)), float(std::abs(rect.height)));
    TexelTable showing = CountTexels(image, 1);
    for (int y = 0; y < int(size.y); y += kPieceTexels) {
        float height = std::min(float(kPieceTexels), size.y - float(y));
        int runStart = -1, runLength = 0;
        auto endRun = [&](int end) {
            if (runStart < 0) return;
            AppendPiece(pieces, {float(runStart), float(y), float(end - runStart), height}, rect,
                        size);
            runStart = -1;
            runLength = 0;
        };
        for (int x = 0; x < int(size.x); x += kPieceTexels) {
            int width = std::min(kPieceTexels, int(size.x) - x);
            // The texels under the square, whichever way the rectangle runs.
            int left = rect.width < 0 ? rect.left - x - width : rect.left + x;
            int top = rect.height < 0 ? rect.top - y - int(height) : rect.top + y;
            if (!opaque && CountWrapped(showing, left, top, width, int(height)) == 0) {
                endRun(x);
                continue;
            }
            if (runLength == maxRun) endRun(x);
            if (runStart < 0) runStart = x;
            runLength++;
        }
        endRun(int(size.x));
    }
}

// The pieces of a picture drawn in the frame `transform` gives them, those in view only.
void DrawPiecesInView(sf::RenderTarget& target, const sf::VertexArray& pieces,
                      sf::RenderStates states, const sf::FloatRect& visible,
                      const HiddenTest& hidden) {
    shownPieces.clear();
    for (size_t i = 0; i + 3 < pieces.getVertexCount(); i += 4) {
        sf::FloatRect world = states.transform.transformRect(
            {pieces[i].position, pieces[i + 2].position - pieces[i].position});
        if (!visible.intersects(world) || hidden(world)) continue;
        for (size_t v = i; v < i + 4; v++) shownPieces.append(pieces[v]);
    }
    target.draw(shownPieces, states);
}

void MoveBackground(Background& background, sf::Vector2f center, sf::Vector2f size,
                    sf::Vector2f shift, int roomNumber) {
    sf::Sprite& sprite = *background.sprite;
    sprite.move(shift.x * background.parallaxX, shift.y * background.parallaxY);
    sf::FloatRect bounds = sprite.getGlobalBounds();
    if (background.loopX) {
        float viewLeft = center.x - size.x / 2;
        if (viewLeft > bounds.left + bounds.width / 2) {
            sprite.setPosition(bounds.left + bounds.width / 2, bounds.top);
        } else if (bounds.left > viewLeft) {
            sprite.setPosition(bounds.left - bounds.width / 2, bounds.top);
        }
    }
    if (background.loopY) {
        if (center.y + size.y / 2 > bounds.top + bounds.height) {
            sprite.setPosition(bounds.left, bounds.top + bounds.height / 2);
        } else if (bounds.top > center.y - size.y / 2) {
            sprite.setPosition(bounds.left, bounds.top - bounds.height / 2);
        }
    }
    if (background.followY) {
        // Tall shafts show their silhouettes lower on the screen.
        float offset = (roomNumber == 12 || roomNumber == 22) ? 270.0f : 540.0f;
        sprite.setPosition(sprite.getPosition().x, center.y - offset);
    }
}

void AdvanceTileAnimation(TileAnimation& animation, float dt) {
    Room& room = CurrentRoom();
    animation.timer += dt;
    while (animation.frameCount > 0 && animation.durations[animation.frame] < animation.timer) {
        animation.timer = 0;
        animation.frame = (animation.frame + 1) % animation.frameCount;
        unsigned id = animation.tileIds[animation.frame];
        unsigned size = animation.tileSize;
        unsigned columns = animation.texture ? animation.texture->getSize().x / size : 1;
        if (columns == 0) columns = 1;
        sf::Sprite& sprite = room.layers[animation.layer].tiles[animation.tile];
        sprite.setTextureRect(sf::IntRect(int((id % columns) * size), int((id / columns) * size),
                                          int(size), int(size)));
    }
}

}  // namespace

sf::Vector2f& LastViewCenter() {
    return lastViewCenter;
}
int& DebugOverlay() {
    return debugOverlay;
}

void BuildBackgroundPieces(Background& background) {
    background.pieces.clear();
    background.opaque = 0;
    if (!background.texture || !background.sprite) return;
    sf::Image image = background.texture->copyToImage();
    background.opaque = AllOpaque(image);
    background.solid = CountTexels(image, 255);
    // Short runs, so that the ones behind opaque tiles can be left out.
    CutIntoPieces(image, background.sprite->getTextureRect(), background.opaque, kPieceRun,
                  background.pieces);
}

sf::Color BackdropFootColor(const std::vector<Background>& backgrounds) {
    float color[3] = {0, 0, 0};
    for (auto it = backgrounds.rbegin(); it != backgrounds.rend(); ++it) {
        if (!it->texture || !it->sprite) continue;
        sf::Image image = it->texture->copyToImage();
        sf::Vector2u size = image.getSize();
        if (size.x == 0 || size.y == 0) continue;
        // A backdrop repeated upwards is flipped: its foot on the screen is the picture's top.
        unsigned row = it->sprite->getTextureRect().height < 0 ? 0 : size.y - 1;
        float premultiplied[3] = {0, 0, 0}, alpha = 0;
        for (unsigned x = 0; x < size.x; x++) {
            sf::Color texel = image.getPixel(x, row);
            float a = float(texel.a) / 255.0f;
            premultiplied[0] += float(texel.r) * a;
            premultiplied[1] += float(texel.g) * a;
            premultiplied[2] += float(texel.b) * a;
            alpha += a;
        }
        alpha /= float(size.x);
        for (int c = 0; c < 3; c++) {
            color[c] = color[c] * (1 - alpha) + premultiplied[c] / float(size.x);
        }
    }
    return sf::Color(sf::Uint8(std::lround(color[0])), sf::Uint8(std::lround(color[1])),
                     sf::Uint8(std::lround(color[2])));
}

void FlattenTileLayers() {
    Room& room = CurrentRoom();
    std::set<std::pair<int, int>> animated;
    for (const TileAnimation& animation : room.tileAnimations) {
        animated.insert({animation.layer, animation.tile});
    }
    for (int l = 0; l < int(room.layers.size()); l++) {
        RoomLayer& layer = room.layers[size_t(l)];
        layer.still.reset();
        layer.stillPieces.clear();
        layer.animatedTiles.clear();
        if (layer.tiles.empty() || layer.name == "Elevator group") continue;
        // The layer's extent in the art's own pixels.
        sf::Vector2f extent;
        for (const sf::Sprite& tile : layer.tiles) {
            sf::FloatRect bounds = tile.getGlobalBounds();
            extent.x = std::max(extent.x, (bounds.left + bounds.width) / room.scale);
            extent.y = std::max(extent.y, (bounds.top + bounds.height) / room.scale);
        }
        sf::Vector2u size(unsigned(std::ceil(extent.x)), unsigned(std::ceil(extent.y)));
        unsigned largest = sf::Texture::getMaximumSize();
        auto still = std::make_unique<sf::RenderTexture>();
        if (size.x > largest || size.y > largest || !still->create(size.x, size.y)) continue;
        still->clear(sf::Color::Transparent);
        // Tiles of a layer never overlap: each is copied as it is, its alpha too.
        sf::RenderStates copy(sf::BlendNone);
        copy.transform.scale(1 / room.scale, 1 / room.scale);
        for (int t = 0; t < int(layer.tiles.size()); t++) {
            if (animated.count({l, t})) {
                layer.animatedTiles.push_back(t);
            } else {
                still->draw(layer.tiles[size_t(t)], copy);
            }
        }
        still->display();
        sf::Image image = still->getTexture().copyToImage();
        CutIntoPieces(image, {0, 0, int(size.x), int(size.y)}, false, int(size.x),
                      layer.stillPieces);
        layer.still = std::move(still);
    }
}

void BuildBackdropCover() {
    Room& room = CurrentRoom();
    room.backdropCover.clear();
    room.coverColumns = 0;
    if (!room.tilesetTexture) return;
    float cell = float(room.tileSize) * room.scale;
    sf::Image tileset = room.tilesetTexture->copyToImage();
    std::map<std::pair<int, int>, bool> opaqueTiles;
    auto opaque = [&](sf::IntRect rect) {
        auto [known, added] = opaqueTiles.try_emplace({rect.left, rect.top}, true);
        for (int y = rect.top; added && y < rect.top + rect.height; y++) {
            for (int x = rect.left; known->second && x < rect.left + rect.width; x++) {
                if (unsigned(x) >= tileset.getSize().x || unsigned(y) >= tileset.getSize().y ||
                    tileset.getPixel(unsigned(x), unsigned(y)).a != 255) {
                    known->second = false;
                }
            }
        }
        return known->second;
    };
    std::set<std::pair<int, int>> animated;
    for (const TileAnimation& animation : room.tileAnimations) {
        animated.insert({animation.layer, animation.tile});
    }
    std::vector<sf::Vector2i> covered;
    int columns = 0, rows = 0;
    for (int l = 0; l < int(room.layers.size()); l++) {
        if (room.layers[size_t(l)].name == "Elevator group") continue;
        const std::vector<sf::Sprite>& tiles = room.layers[size_t(l)].tiles;
        for (int t = 0; t < int(tiles.size()); t++) {
            // Tiles of every layer are drawn after the backdrops. An animated tile may turn to a
            // frame that lets the backdrop through.
            if (animated.count({l, t}) || !opaque(tiles[size_t(t)].getTextureRect())) continue;
            sf::Vector2f position = tiles[size_t(t)].getPosition();
            sf::Vector2i at(int(std::lround(position.x / cell)),
                            int(std::lround(position.y / cell)));
            if (at.x < 0 || at.y < 0) continue;
            covered.push_back(at);
            columns = std::max(columns, at.x + 1);
            rows = std::max(rows, at.y + 1);
        }
    }
    room.coverColumns = columns;
    room.backdropCover.assign(size_t(columns) * size_t(rows), 0);
    for (sf::Vector2i at : covered) room.backdropCover[size_t(at.y * columns + at.x)] = 1;
}

bool BackdropsHiddenIn(sf::FloatRect area) {
    const Room& room = CurrentRoom();
    if (room.coverColumns == 0) return false;
    float cell = float(room.tileSize) * room.scale;
    int rows = int(room.backdropCover.size()) / room.coverColumns;
    int left = int(std::floor(area.left / cell)), top = int(std::floor(area.top / cell));
    int right = int(std::ceil((area.left + area.width) / cell));
    int bottom = int(std::ceil((area.top + area.height) / cell));
    if (left < 0 || top < 0 || right > room.coverColumns || bottom > rows) return false;
    for (int y = top; y < bottom; y++) {
        for (int x = left; x < right; x++) {
            if (!room.backdropCover[size_t(y * room.coverColumns + x)]) return false;
        }
    }
    return true;
}

void DrawRoomBackgrounds(sf::RenderTarget& target) {
    const Room& room = CurrentRoom();
    sf::FloatRect visible = VisibleArea(target);
    // The farthest first. A piece is left out behind opaque tiles or a nearer backdrop's solid
    // texels: city silhouettes hide much of the sky.
    for (auto it = room.backgrounds.rbegin(); it != room.backgrounds.rend(); ++it) {
        if (!it->sprite) continue;
        auto nearer = std::next(it);
        auto hidden = [&](const sf::FloatRect& area) {
            if (BackdropsHiddenIn(area)) return true;
            return std::any_of(nearer, room.backgrounds.rend(),
                               [&](const Background& b) { return HiddenBehind(b, area); });
        };
        // Backgrounds are never tinted: the plain copy fills faster, and an opaque one need not
        // be blended at all. Only the pieces in view and not behind opaque tiles are drawn.
        sf::RenderStates states;
        states.shader = PlainTextureShader();
        states.texture = it->texture.get();
        states.transform = it->sprite->getTransform();
        if (it->opaque) states.blendMode = sf::BlendNone;
        DrawPiecesInView(target, it->pieces, states, visible, hidden);
    }
    DrawLayersNamed(target, "Background");
}

void DrawRoomMiddleLayers(sf::RenderTarget& target) {
    sf::FloatRect visible = VisibleArea(target);
    for (const RoomLayer& layer : CurrentRoom().layers) {
        if (layer.name == "Elevator group") {
            DrawElevatorCabins(target);
        } else if (layer.name != "Background" && layer.name != "Foreground") {
            DrawTiles(target, layer, visible);
        }
    }
}

void DrawRoomForeground(sf::RenderTarget& target) {
    DrawLayersNamed(target, "Foreground");
}

void DrawRoomDebug(sf::RenderTarget& target) {
    if (!debugOverlay) return;
    const Room& room = CurrentRoom();
    for (const Collision& collision : room.collisions) {
        if (collision.active) target.draw(*collision.shape);
    }
    for (const Trigger& trigger : room.triggers) {
        if (trigger.near) target.draw(*trigger.shape);
    }
    for (const TransitionDoor& door : room.transitionDoors) target.draw(*door.shape);
    for (const EnemyContainer& container : room.enemyContainers) target.draw(*container.shape);
    // The stored death zones show too, so a level designer sees every hazard at once.
    for (const DeathZone& zone : room.deathZones) target.draw(*zone.shape);
    DrawElevatorDebug(target);
    if (room.cameraContainer) target.draw(*room.cameraContainer);
    if (room.proximityCircle) target.draw(*room.proximityCircle);
}

void UpdateBackgrounds(const sf::View& view) {
    Room& room = CurrentRoom();
    sf::Vector2f center = view.getCenter();
    if (center != lastViewCenter && !room.backgrounds.empty()) {
        sf::Vector2f shift = center - lastViewCenter;
        for (Background& background : room.backgrounds) {
            if (background.sprite) {
                MoveBackground(background, center, view.getSize(), shift, room.roomNumber);
            }
        }
    }
    lastViewCenter = center;
}

void UpdateRoomProximity(sf::Vector2f center, float radius, float dt) {
    Room& room = CurrentRoom();
    if (room.proximityCircle) room.proximityCircle->setPosition(center);
    if (radius != room.proximityRadius) {
        if (room.proximityCircle) {
            room.proximityCircle->setRadius(radius);
            room.proximityCircle->setOrigin(radius, radius);
        }
        room.proximityRadius = radius;
    }
    for (Trigger& trigger : room.triggers) {
        sf::FloatRect bounds = trigger.shape->getGlobalBounds();
        float dx = bounds.left + bounds.width / 2 - center.x;
        float dy = bounds.top + bounds.height / 2 - center.y;
        float distance = std::sqrt(dx * dx + dy * dy);
        trigger.near = distance < bounds.height / 2 + bounds.width / 2 + room.proximityRadius;
    }
    for (TileAnimation& animation : room.tileAnimations) AdvanceTileAnimation(animation, dt);
}
