#pragma once

namespace tvx {

class Clock;
class GameWindowProbe;
class ImageEncoder;
class MeterView;
class Prompter;
class ScreenSource;
class ShellLauncher;
class Sound;
class TextCodec;
class Waiter;

// The machine as the engine sees it. encoder and codec may be null where a user has none
// (PNG and JPEG screenshots are then skipped; record files stay UTF-8).
struct MeterPorts {
    Clock& clock;
    Waiter& waiter;
    GameWindowProbe& probe;
    ScreenSource& screen;
    Sound& sound;
    ShellLauncher& launcher;
    Prompter& prompter;
    MeterView& view;
    ImageEncoder* encoder = nullptr;
    TextCodec* codec = nullptr;
};

} // namespace tvx
