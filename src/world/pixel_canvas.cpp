#include "world/pixel_canvas.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr float kTexel = float(kWorldPixelsPerTexel);
const sf::Vector2f kScreenSize(1920, 1080);

struct PixelCanvas {
    std::unique_ptr<sf::RenderTexture> texture;
    sf::Vector2u used;     // texels drawn this frame, from the top-left corner
    sf::Vector2f snapped;  // the canvas centre in world pixels, on the texel grid
    sf::View seen;         // the view the frame shows
    sf::FloatRect area;    // the canvas rectangle in world pixels
    sf::RenderTarget* target = nullptr;
};

PixelCanvas canvas;
int fullResolution = 0;
std::unique_ptr<sf::Shader> plainTexture;

const char* const kPlainTexture =
    "uniform sampler2D texture;\n"
    "void main() { gl_FragColor = texture2D(texture, gl_TexCoord[0].xy); }\n";

void CreatePlainTextureShader() {
    if (plainTexture || !sf::Shader::isAvailable()) return;
    auto shader = std::make_unique<sf::Shader>();
    if (!shader->loadFromMemory(kPlainTexture, sf::Shader::Fragment)) return;
    shader->setUniform("texture", sf::Shader::CurrentTexture);
    plainTexture = std::move(shader);
}

// Grows the texture when a frame needs more texels than it has (a zoomed-out or rotated view).
void EnsureCapacity(sf::Vector2u size) {
    sf::Vector2u have = canvas.texture ? canvas.texture->getSize() : sf::Vector2u(0, 0);
    if (canvas.texture && size.x <= have.x && size.y <= have.y) return;
    auto texture = std::make_unique<sf::RenderTexture>();
    texture->create(std::max(size.x, have.x), std::max(size.y, have.y));
    texture->setSmooth(false);
    canvas.texture = std::move(texture);
}

unsigned EvenTexels(float worldPixels) {
    return 2 * unsigned(std::ceil(worldPixels / (2 * kTexel))) + 2;
}

sf::Vector2f Rotate(sf::Vector2f v, float degrees) {
    float radians = degrees * 3.14159265f / 180.0f;
    float c = std::cos(radians), s = std::sin(radians);
    return {v.x * c - v.y * s, v.x * s + v.y * c};
}

}  // namespace

void CreatePixelCanvas() {
    canvas = PixelCanvas();
    CreatePlainTextureShader();
    EnsureCapacity(PixelCanvasSizeFor(sf::View(sf::FloatRect({0, 0}, kScreenSize))));
}

void DestroyPixelCanvas() {
    canvas = PixelCanvas();
    plainTexture.reset();
}

const sf::Shader* PlainTextureShader() {
    return plainTexture.get();
}

sf::Vector2u PixelCanvasSizeFor(const sf::View& view) {
    sf::Vector2f size = view.getSize();
    float radians = view.getRotation() * 3.14159265f / 180.0f;
    float c = std::fabs(std::cos(radians)), s = std::fabs(std::sin(radians));
    float width = std::fabs(size.x) * c + std::fabs(size.y) * s;
    float height = std::fabs(size.x) * s + std::fabs(size.y) * c;
    return {EvenTexels(width), EvenTexels(height)};
}

sf::Vector2f SnapToTexelGrid(sf::Vector2f center) {
    return {std::round(center.x / kTexel) * kTexel, std::round(center.y / kTexel) * kTexel};
}

sf::RenderTarget& BeginPixelCanvas(sf::RenderTarget& window, const sf::View& view,
                                   sf::Color background) {
    canvas.seen = view;
    if (fullResolution) {
        window.setView(view);
        canvas.target = &window;
        sf::Vector2f size = view.getSize();
        canvas.area = {view.getCenter() - size / 2.0f, size};
        return window;
    }
    canvas.used = PixelCanvasSizeFor(view);
    EnsureCapacity(canvas.used);
    sf::Vector2u capacity = canvas.texture->getSize();
    canvas.snapped = SnapToTexelGrid(view.getCenter());
    sf::Vector2f size(float(canvas.used.x) * kTexel, float(canvas.used.y) * kTexel);
    sf::View grid(canvas.snapped, size);
    grid.setViewport(
        {0, 0, float(canvas.used.x) / float(capacity.x), float(canvas.used.y) / float(capacity.y)});
    canvas.area = {canvas.snapped - size / 2.0f, size};
    canvas.texture->setView(grid);
    canvas.texture->clear(background);
    canvas.target = canvas.texture.get();
    return *canvas.texture;
}

sf::FloatRect PixelCanvasArea() {
    return canvas.area;
}

void PresentPixelCanvas(sf::RenderTarget& window) {
    if (fullResolution || !canvas.texture) return;
    canvas.texture->display();
    sf::Vector2f viewSize = canvas.seen.getSize();
    sf::Vector2f zoom(kScreenSize.x / viewSize.x, kScreenSize.y / viewSize.y);
    float rotation = canvas.seen.getRotation();
    // The canvas centre sits a fraction of a texel away from the view's centre: shift the picture
    // by it on screen so the camera glides instead of stepping three pixels at a time.
    sf::Vector2f remainder = canvas.snapped - canvas.seen.getCenter();
    sf::Vector2f shift = Rotate({remainder.x * zoom.x, remainder.y * zoom.y}, -rotation);
    sf::Sprite picture(canvas.texture->getTexture(),
                       sf::IntRect(0, 0, int(canvas.used.x), int(canvas.used.y)));
    picture.setOrigin(float(canvas.used.x) / 2, float(canvas.used.y) / 2);
    picture.setScale(kTexel * zoom.x, kTexel * zoom.y);
    picture.setRotation(-rotation);
    picture.setPosition(kScreenSize / 2.0f + shift);
    window.setView(sf::View(sf::FloatRect({0, 0}, kScreenSize)));
    sf::RenderStates states(sf::BlendNone);
    states.shader = plainTexture.get();
    window.draw(picture, states);
}

void SetFullResolutionWorld(int on) {
    fullResolution = on;
}

int FullResolutionWorld() {
    return fullResolution;
}
