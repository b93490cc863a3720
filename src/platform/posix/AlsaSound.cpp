// Tones through ALSA's default device; the system beep is the X server's bell.
#include "SoundFactory.h"

#include <alsa/asoundlib.h>
#include <dlfcn.h>
#include <xcb/xcb.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>
#include <vector>

namespace tvx::platform {

namespace {

constexpr unsigned kRate = 44100;
constexpr int kFadeSamples = 220; // 5 ms in and out, so the tone does not click

// One sine tone, at a quarter of full scale.
std::vector<std::int16_t> sineTone(std::int32_t frequencyHz, std::int32_t durationMs)
{
    const auto count = static_cast<std::size_t>(std::int64_t{kRate} * durationMs / 1000);
    std::vector<std::int16_t> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double edge = static_cast<double>(std::min(i, count - 1 - i));
        const double fade = std::min(1.0, edge / kFadeSamples);
        const double phase = 2.0 * std::numbers::pi * frequencyHz * static_cast<double>(i) / kRate;
        samples[i] = static_cast<std::int16_t>(8191.0 * fade * std::sin(phase));
    }
    return samples;
}

// ALSA reports a missing card on stderr at every open; a meter without sound says nothing.
void quietAlsa(const char*, int, const char*, int, const char*, ...) {}

// ALSA, loaded at the first tone: most players keep the capture beep off, and the library
// costs a quarter of a megabyte of memory from start-up on when linked.
struct Alsa {
    decltype(&snd_lib_error_set_handler) setErrorHandler = nullptr;
    decltype(&snd_pcm_open) open = nullptr;
    decltype(&snd_pcm_nonblock) nonblock = nullptr;
    decltype(&snd_pcm_close) close = nullptr;
    decltype(&snd_pcm_set_params) setParams = nullptr;
    decltype(&snd_pcm_writei) writei = nullptr;
    decltype(&snd_pcm_recover) recover = nullptr;
    decltype(&snd_pcm_drain) drain = nullptr;

    // Null when the library or one of its functions is missing: then there is no tone.
    static const Alsa* get()
    {
        static const std::optional<Alsa> loaded = load();
        return loaded ? &*loaded : nullptr;
    }

private:
    static std::optional<Alsa> load()
    {
        void* library = dlopen("libasound.so.2", RTLD_LAZY | RTLD_LOCAL);
        if (library == nullptr)
            return std::nullopt;
        Alsa alsa;
        const bool found = bind(library, "snd_lib_error_set_handler", alsa.setErrorHandler) &&
                           bind(library, "snd_pcm_open", alsa.open) && bind(library, "snd_pcm_nonblock", alsa.nonblock) &&
                           bind(library, "snd_pcm_close", alsa.close) &&
                           bind(library, "snd_pcm_set_params", alsa.setParams) &&
                           bind(library, "snd_pcm_writei", alsa.writei) && bind(library, "snd_pcm_recover", alsa.recover) &&
                           bind(library, "snd_pcm_drain", alsa.drain);
        if (!found)
            return std::nullopt; // the library stays loaded: it is asked once a run
        alsa.setErrorHandler(quietAlsa);
        return alsa;
    }

    template <typename Function>
    static bool bind(void* library, const char* name, Function& function)
    {
        function = reinterpret_cast<Function>(dlsym(library, name));
        return function != nullptr;
    }
};

class PcmHandle {
public:
    explicit PcmHandle(const Alsa& alsa) : m_alsa(alsa)
    {
        // Non-blocking open: a device held by another program must not freeze the window.
        if (m_alsa.open(&m_pcm, "default", SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK) < 0)
            m_pcm = nullptr;
        else if (m_alsa.nonblock(m_pcm, 0) < 0)
            close();
    }
    ~PcmHandle() { close(); }
    PcmHandle(const PcmHandle&) = delete;
    PcmHandle& operator=(const PcmHandle&) = delete;
    snd_pcm_t* get() const { return m_pcm; }

private:
    void close()
    {
        if (m_pcm)
            m_alsa.close(m_pcm);
        m_pcm = nullptr;
    }
    const Alsa& m_alsa;
    snd_pcm_t* m_pcm = nullptr;
};

class AlsaSound final : public Sound {
public:
    void systemBeep() override
    {
        xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
        if (!xcb_connection_has_error(connection)) {
            xcb_bell(connection, 0);
            xcb_flush(connection);
        }
        xcb_disconnect(connection);
    }

    // Like the Windows Beep: returns when the tone has played.
    void beep(std::int32_t frequencyHz, std::int32_t durationMs) override
    {
        if (frequencyHz <= 0 || durationMs <= 0)
            return;
        const Alsa* alsa = Alsa::get();
        if (alsa == nullptr)
            return;
        const PcmHandle pcm(*alsa);
        if (!pcm.get() ||
            alsa->setParams(pcm.get(), SND_PCM_FORMAT_S16, SND_PCM_ACCESS_RW_INTERLEAVED, 1, kRate, 1, 50000) < 0)
            return;
        const std::vector<std::int16_t> samples = sineTone(frequencyHz, durationMs);
        snd_pcm_sframes_t written = alsa->writei(pcm.get(), samples.data(), samples.size());
        if (written < 0 && alsa->recover(pcm.get(), static_cast<int>(written), 1) == 0)
            written = alsa->writei(pcm.get(), samples.data(), samples.size());
        if (written > 0)
            alsa->drain(pcm.get());
    }
};

} // namespace

std::unique_ptr<Sound> makeSound()
{
    return std::make_unique<AlsaSound>();
}

} // namespace tvx::platform
