#include "platform/alsa/AlsaMixerDevice.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace {

enum class Side { Playback, Capture };
enum class Part { Volume, Switch };

void silent(const char *, int, const char *, int, const char *, ...) {}

using Names = std::span<const char *const>;

constexpr const char *Master[] = {"Master"};
constexpr const char *Pcm[] = {"PCM"};
constexpr const char *LineIn[] = {"Line"};
constexpr const char *Mic[] = {"Mic", "Capture"};
constexpr const char *Cd[] = {"CD"};
constexpr const char *Aux[] = {"Aux"};
constexpr const char *Phone[] = {"Phone"};
constexpr const char *Synth[] = {"Synth"};
constexpr const char *Iec958[] = {"IEC958"};
constexpr const char *Beep[] = {"Beep", "PC Speaker"};
constexpr const char *TrebleNames[] = {"Treble", "Tone Control - Treble"};
constexpr const char *BassNames[] = {"Bass", "Tone Control - Bass"};

// The simple elements that stand for a line, in the order they are tried.
Names elementsOf(std::uint32_t component)
{
    switch (component) {
    case mixer::Speakers: return Master;
    case mixer::WaveOutSource: return Pcm;
    case mixer::LineSource: return LineIn;
    case mixer::MicrophoneSource: return Mic;
    case mixer::CompactDiscSource: return Cd;
    case mixer::UndefinedSource: return Aux;
    case mixer::TelephoneSource: return Phone;
    case mixer::SynthesizerSource: return Synth;
    case mixer::DigitalSource: return Iec958;
    case mixer::PcSpeakerSource: return Beep;
    default: return {};
    }
}

snd_mixer_elem_t *element(snd_mixer_t *m, const char *name)
{
    snd_mixer_selem_id_t *id = nullptr;
    if (snd_mixer_selem_id_malloc(&id) < 0)
        return nullptr;
    snd_mixer_selem_id_set_name(id, name);
    snd_mixer_selem_id_set_index(id, 0);
    snd_mixer_elem_t *e = snd_mixer_find_selem(m, id);
    snd_mixer_selem_id_free(id);
    return e;
}

bool has(snd_mixer_elem_t *e, Side side, Part part)
{
    if (side == Side::Capture)
        return part == Part::Volume ? snd_mixer_selem_has_capture_volume(e) : snd_mixer_selem_has_capture_switch(e);
    return part == Part::Volume ? snd_mixer_selem_has_playback_volume(e) || snd_mixer_selem_has_common_volume(e)
                                : snd_mixer_selem_has_playback_switch(e) || snd_mixer_selem_has_common_switch(e);
}

std::uint32_t channelsOn(snd_mixer_elem_t *e, Side side)
{
    if (side == Side::Capture)
        return !snd_mixer_selem_is_capture_mono(e) && snd_mixer_selem_has_capture_channel(e, SND_MIXER_SCHN_FRONT_RIGHT)
                   ? 2
                   : 1;
    return !snd_mixer_selem_is_playback_mono(e) && snd_mixer_selem_has_playback_channel(e, SND_MIXER_SCHN_FRONT_RIGHT)
               ? 2
               : 1;
}

int range(snd_mixer_elem_t *e, Side side, long *min, long *max)
{
    return side == Side::Capture ? snd_mixer_selem_get_capture_volume_range(e, min, max)
                                 : snd_mixer_selem_get_playback_volume_range(e, min, max);
}

constexpr std::array<snd_mixer_selem_channel_id_t, 2> Channels{SND_MIXER_SCHN_FRONT_LEFT, SND_MIXER_SCHN_FRONT_RIGHT};

// One control the forms found: where it lives, so that it is looked up by
// name at each use and never held by a pointer the library may free.
struct Found {
    std::uint32_t component;
    std::uint32_t controlType;
    std::string element;
    Side side;
    Part part;
    std::uint32_t channels;
};

} // namespace

struct AlsaMixerDevice::Opened {
    snd_config_t *config = nullptr;
    snd_mixer_t *mixer = nullptr;
    std::vector<Found> found; // control id n is found[n - 1]

    ~Opened()
    {
        if (mixer)
            snd_mixer_close(mixer);
        if (config)
            snd_config_delete(config);
    }
};

AlsaMixerDevice::AlsaMixerDevice()
{
    snd_lib_error_set_handler(silent);
}

AlsaMixerDevice::~AlsaMixerDevice() = default;

std::string AlsaMixerDevice::deviceName()
{
    int card = -1;
    if (snd_card_next(&card) == 0 && card >= 0)
        return "hw:" + std::to_string(card);
    return "default";
}

std::uint32_t AlsaMixerDevice::toLevel(long value, long min, long max)
{
    if (max <= min)
        return 0;
    const std::int64_t span = std::int64_t(max) - min;
    const std::int64_t v = std::clamp<std::int64_t>(std::int64_t(value) - min, 0, span);
    return static_cast<std::uint32_t>((v * mixer::LevelMaximum + span / 2) / span);
}

long AlsaMixerDevice::fromLevel(std::uint32_t level, long min, long max)
{
    if (max <= min)
        return min;
    const std::int64_t span = std::int64_t(max) - min;
    const std::int64_t l = std::min<std::int64_t>(level, mixer::LevelMaximum);
    return static_cast<long>(min + (l * span + mixer::LevelMaximum / 2) / mixer::LevelMaximum);
}

std::uint32_t AlsaMixerDevice::openDevice(std::uint32_t *handle)
{
    auto o = std::make_unique<Opened>();
    // A fresh reading of the configuration: whether "default" is the sound
    // server is decided when the configuration is read.
    snd_config_update_t *update = nullptr;
    if (snd_config_update_r(&o->config, &update, nullptr) < 0)
        return mixer::BadDeviceId;
    snd_config_update_free(update);
    snd_ctl_t *ctl = nullptr;
    if (snd_ctl_open_lconf(&ctl, deviceName().c_str(), SND_CTL_NONBLOCK, o->config) < 0)
        return mixer::BadDeviceId;
    snd_hctl_t *hctl = nullptr;
    if (snd_hctl_open_ctl(&hctl, ctl) < 0) {
        snd_ctl_close(ctl);
        return mixer::BadDeviceId;
    }
    if (snd_mixer_open(&o->mixer, 0) < 0) {
        snd_hctl_close(hctl);
        return mixer::NoDriver;
    }
    if (snd_mixer_attach_hctl(o->mixer, hctl) < 0 || snd_mixer_selem_register(o->mixer, nullptr, nullptr) < 0
        || snd_mixer_load(o->mixer) < 0)
        return mixer::NoDriver;
    m_opened.push_back(std::move(o));
    *handle = static_cast<std::uint32_t>(m_opened.size());
    return mixer::NoError;
}

AlsaMixerDevice::Opened *AlsaMixerDevice::opened(std::uint32_t handle) const
{
    return handle >= 1 && handle <= m_opened.size() ? m_opened[handle - 1].get() : nullptr;
}

bool AlsaMixerDevice::knows(std::uint32_t handle) const
{
    return opened(handle) != nullptr;
}

std::uint32_t AlsaMixerDevice::findLine(std::uint32_t handle, std::uint32_t componentType, LineFacts &line)
{
    Opened &o = *opened(handle);
    const Side side = componentType == mixer::MicrophoneSource ? Side::Capture : Side::Playback;
    for (const char *name : elementsOf(componentType)) {
        snd_mixer_elem_t *e = element(o.mixer, name);
        if (!e)
            continue;
        line.lineId = componentType;
        line.channels = channelsOn(e, side);
        line.controls = (has(e, side, Part::Volume) ? 1 : 0) + (has(e, side, Part::Switch) ? 1 : 0);
        line.name = name;
        return mixer::NoError;
    }
    return mixer::InvalidLine;
}

std::uint32_t AlsaMixerDevice::findControl(std::uint32_t handle, std::uint32_t lineId, std::uint32_t controlType,
                                           ControlFacts &control)
{
    Opened &o = *opened(handle);
    const Side side = lineId == mixer::MicrophoneSource ? Side::Capture : Side::Playback;
    Part part = Part::Volume;
    Names names = elementsOf(lineId);
    if (names.empty())
        return mixer::InvalidLine;
    switch (controlType) {
    case mixer::Volume: break;
    case mixer::Mute: part = Part::Switch; break;
    case mixer::Treble:
    case mixer::Bass:
        if (lineId != mixer::Speakers)
            return mixer::InvalidControl;
        names = controlType == mixer::Treble ? Names(TrebleNames) : Names(BassNames);
        break;
    default: return mixer::InvalidControl;
    }
    for (const char *name : names) {
        snd_mixer_elem_t *e = element(o.mixer, name);
        if (!e || !has(e, side, part))
            continue;
        const std::uint32_t channels = channelsOn(e, side);
        auto same = [&](const Found &f) { return f.component == lineId && f.controlType == controlType; };
        auto it = std::find_if(o.found.begin(), o.found.end(), same);
        if (it == o.found.end())
            it = o.found.insert(o.found.end(), Found{lineId, controlType, name, side, part, channels});
        long min = 0, max = 0;
        if (part == Part::Volume)
            range(e, side, &min, &max);
        control.id = static_cast<std::uint32_t>(it - o.found.begin()) + 1;
        control.channels = channels;
        control.onOff = part == Part::Switch;
        control.steps = part == Part::Volume ? static_cast<std::uint32_t>(max - min) : 0;
        control.name = name;
        return mixer::NoError;
    }
    return mixer::InvalidControl;
}

std::uint32_t AlsaMixerDevice::channelsOf(std::uint32_t handle, std::uint32_t controlId, std::uint32_t *channels)
{
    Opened &o = *opened(handle);
    if (controlId < 1 || controlId > o.found.size())
        return mixer::InvalidControl;
    *channels = o.found[controlId - 1].channels;
    return mixer::NoError;
}

std::uint32_t AlsaMixerDevice::read(std::uint32_t handle, std::uint32_t controlId, std::uint32_t count,
                                    std::uint32_t *values)
{
    Opened &o = *opened(handle);
    // Takes in what changed since the last call; fails at once once the
    // sound server has gone.
    if (snd_mixer_handle_events(o.mixer) < 0)
        return mixer::GeneralError;
    const Found &f = o.found[controlId - 1];
    snd_mixer_elem_t *e = element(o.mixer, f.element.c_str());
    if (!e)
        return mixer::GeneralError;
    std::array<std::uint32_t, 2> got{};
    for (std::uint32_t c = 0; c < f.channels; ++c) {
        const snd_mixer_selem_channel_id_t ch = Channels[c];
        if (f.part == Part::Switch) {
            int on = 0;
            const int err = f.side == Side::Capture ? snd_mixer_selem_get_capture_switch(e, ch, &on)
                                                    : snd_mixer_selem_get_playback_switch(e, ch, &on);
            if (err < 0)
                return mixer::GeneralError;
            got[c] = on ? 0 : 1;
        } else {
            long v = 0, min = 0, max = 0;
            const int err = f.side == Side::Capture ? snd_mixer_selem_get_capture_volume(e, ch, &v)
                                                    : snd_mixer_selem_get_playback_volume(e, ch, &v);
            if (err < 0 || range(e, f.side, &min, &max) < 0)
                return mixer::GeneralError;
            got[c] = toLevel(v, min, max);
        }
    }
    if (count == 1) // one value for the whole line: its loudest channel
        values[0] = f.part == Part::Switch ? got[0] : std::max(got[0], got[f.channels - 1]);
    else
        std::copy_n(got.begin(), count, values);
    return mixer::NoError;
}

std::uint32_t AlsaMixerDevice::write(std::uint32_t handle, std::uint32_t controlId, std::uint32_t count,
                                     const std::uint32_t *values)
{
    Opened &o = *opened(handle);
    const Found &f = o.found[controlId - 1];
    snd_mixer_elem_t *e = element(o.mixer, f.element.c_str());
    if (!e)
        return mixer::GeneralError;
    long min = 0, max = 0;
    if (f.part == Part::Volume && range(e, f.side, &min, &max) < 0)
        return mixer::GeneralError;
    // One value for every channel is one request to the sound server.
    if (count == 1 || std::all_of(values, values + count, [&](std::uint32_t v) { return v == values[0]; })) {
        int err = 0;
        if (f.part == Part::Switch) {
            const int on = values[0] ? 0 : 1;
            err = f.side == Side::Capture ? snd_mixer_selem_set_capture_switch_all(e, on)
                                          : snd_mixer_selem_set_playback_switch_all(e, on);
        } else {
            const long v = fromLevel(values[0], min, max);
            err = f.side == Side::Capture ? snd_mixer_selem_set_capture_volume_all(e, v)
                                          : snd_mixer_selem_set_playback_volume_all(e, v);
        }
        return err < 0 ? mixer::GeneralError : mixer::NoError;
    }
    for (std::uint32_t c = 0; c < f.channels; ++c) {
        const std::uint32_t value = values[c];
        const snd_mixer_selem_channel_id_t ch = Channels[c];
        int err = 0;
        if (f.part == Part::Switch) {
            const int on = value ? 0 : 1;
            err = f.side == Side::Capture ? snd_mixer_selem_set_capture_switch(e, ch, on)
                                          : snd_mixer_selem_set_playback_switch(e, ch, on);
        } else {
            const long v = fromLevel(value, min, max);
            err = f.side == Side::Capture ? snd_mixer_selem_set_capture_volume(e, ch, v)
                                          : snd_mixer_selem_set_playback_volume(e, ch, v);
        }
        if (err < 0)
            return mixer::GeneralError;
    }
    return mixer::NoError;
}
