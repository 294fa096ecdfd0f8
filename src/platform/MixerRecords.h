#pragma once

#include <cstdint>

// The records of the classic multimedia mixer calls, byte for byte where the
// forms keep them (a control record is 148 bytes, a line record 168). The two
// request records carry a pointer to the caller's memory, so only their
// leading fields keep the classic layout.
namespace mixer {

// Result codes: every failure is one of these, never an exception.
constexpr std::uint32_t NoError = 0;
constexpr std::uint32_t GeneralError = 1;
constexpr std::uint32_t BadDeviceId = 2;
constexpr std::uint32_t InvalidHandle = 5;
constexpr std::uint32_t NoDriver = 6;
constexpr std::uint32_t InvalidFlag = 10;
constexpr std::uint32_t InvalidParameter = 11;
constexpr std::uint32_t InvalidLine = 1024;
constexpr std::uint32_t InvalidControl = 1025;

// The only ways of asking that the forms use.
constexpr std::uint32_t LineByComponentType = 3;
constexpr std::uint32_t OneControlByType = 2;
constexpr std::uint32_t DetailsValue = 0;

// Component types of lines.
constexpr std::uint32_t Speakers = 4;
constexpr std::uint32_t UndefinedSource = 0x1000;
constexpr std::uint32_t DigitalSource = 0x1001;
constexpr std::uint32_t LineSource = 0x1002;
constexpr std::uint32_t MicrophoneSource = 0x1003;
constexpr std::uint32_t SynthesizerSource = 0x1004;
constexpr std::uint32_t CompactDiscSource = 0x1005;
constexpr std::uint32_t TelephoneSource = 0x1006;
constexpr std::uint32_t PcSpeakerSource = 0x1007;
constexpr std::uint32_t WaveOutSource = 0x1008;

// Control types.
constexpr std::uint32_t Volume = 0x50030001;
constexpr std::uint32_t Bass = 0x50030002;
constexpr std::uint32_t Treble = 0x50030003;
constexpr std::uint32_t Mute = 0x20010002;
constexpr std::uint32_t SignedMeter = 0x10020000;

constexpr std::uint32_t UniformControl = 1; // fdwControl: one value for every channel
constexpr std::uint32_t LineActive = 1;     // fdwLine

constexpr std::uint32_t LevelMaximum = 65535;

struct Line {
    std::uint32_t cbStruct;
    std::uint32_t dwDestination;
    std::uint32_t dwSource;
    std::uint32_t dwLineID;
    std::uint32_t fdwLine;
    std::uint32_t dwUser;
    std::uint32_t dwComponentType;
    std::uint32_t cChannels;
    std::uint32_t cConnections;
    std::uint32_t cControls;
    char szShortName[16];
    char szName[64];
    std::uint32_t dwType;
    std::uint32_t dwDeviceID;
    std::uint16_t wMid;
    std::uint16_t wPid;
    std::uint32_t vDriverVersion;
    char szPname[32];
};
static_assert(sizeof(Line) == 168);

struct Control {
    std::uint32_t cbStruct;
    std::uint32_t dwControlID;
    std::uint32_t dwControlType;
    std::uint32_t fdwControl;
    std::uint32_t cMultipleItems;
    char szShortName[16];
    char szName[64];
    std::uint32_t dwMinimum; // the bounds block: minimum, maximum, four reserved
    std::uint32_t dwMaximum;
    std::uint32_t boundsReserved[4];
    std::uint32_t cSteps; // the metrics block: steps, five reserved
    std::uint32_t metricsReserved[5];
};
static_assert(sizeof(Control) == 148);

struct LineControls {
    std::uint32_t cbStruct; // 24, as the classic record on a 32-bit machine
    std::uint32_t dwLineID;
    std::uint32_t dwControlType;
    std::uint32_t cControls;
    std::uint32_t cbmxctrl; // bytes of one control record: 148
    Control *pamxctrl;
};

struct ControlDetails {
    std::uint32_t cbStruct; // 24
    std::uint32_t dwControlID;
    std::uint32_t cChannels;
    std::uint32_t cMultipleItems;
    std::uint32_t cbDetails; // bytes of one value: 4
    std::uint32_t *paDetails;
};

} // namespace mixer
