#pragma once

#include <functional>
#include <vector>

namespace tvx {

enum class MouseButton { Left, Right };

struct MouseButtonEvent {
    MouseButton button = MouseButton::Left;
    bool pressed = false;

    friend bool operator==(const MouseButtonEvent&, const MouseButtonEvent&) = default;
};

// Port: the two primary mouse buttons, read in the background whatever window has the
// focus. Movement and the wheel are not reported. Events arrive in batches, in order, on
// the user-interface thread.
class MouseButtonSource {
public:
    enum class StartResult {
        Started,
        NoInputSystem, // the platform's input system is not available
        NoMouseDevice, // it is, but the mouse could not be opened through it
    };
    using Handler = std::function<void(const std::vector<MouseButtonEvent>&)>;

    virtual ~MouseButtonSource() = default;
    virtual StartResult start(Handler onBatch) = 0;
    virtual void stop() = 0;
    // A descriptor the caller watches for input, then calls poll(); -1 when the events come
    // as window messages of the thread and need no help.
    virtual int pollDescriptor() const { return -1; }
    // Reads what has arrived and hands it to the handler.
    virtual void poll() {}
};

} // namespace tvx
