// Writes the snapshot sound: the two clicks of a camera's shutter, made of short noise bursts
// through resonant filters. 16 bit mono WAV; the same bytes at every run.
//
//   make_shutter_sound <file.wav>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr std::uint32_t rate = 44100; // samples per second
constexpr double length = 0.32;       // seconds

/// White noise from -1 to 1.
class Noise
{
public:
    double next()
    {
        m_state = m_state * 1664525U + 1013904223U;
        return static_cast<double>(m_state) / 2147483648.0 - 1.0;
    }

private:
    std::uint32_t m_state = 20180813;
};

/// A two-pole resonator: rings at its frequency for as long as its bandwidth (both in Hz) allows.
class Resonator
{
public:
    Resonator(double frequency, double bandwidth)
    {
        const double radius = std::exp(-pi * bandwidth / rate);
        m_feedback1 = 2 * radius * std::cos(2 * pi * frequency / rate);
        m_feedback2 = -radius * radius;
        m_gain = (1 - radius) *
                 std::sqrt(1 - 2 * radius * std::cos(4 * pi * frequency / rate) + radius * radius);
    }

    double pass(double sample)
    {
        const double out = m_gain * sample + m_feedback1 * m_last1 + m_feedback2 * m_last2;
        m_last2 = m_last1;
        m_last1 = out;
        return out;
    }

private:
    double m_feedback1;
    double m_feedback2;
    double m_gain;
    double m_last1 = 0;
    double m_last2 = 0;
};

struct Click
{
    double start;     // seconds
    double decay;     // seconds until it is e times weaker
    double loudness;  // share of full scale before the final levelling
    double frequency; // Hz, of the body
};

void addClick(std::vector<double> &sound, const Click &click, Noise &noise)
{
    Resonator body(click.frequency, 900);
    Resonator metal(click.frequency * 2.7, 1400);
    const auto first = static_cast<std::size_t>(click.start * rate);
    for (std::size_t i = first; i < sound.size(); ++i) {
        const double time = static_cast<double>(i - first) / rate;
        const double attack = std::min(1.0, time / 0.0008);
        const double burst = noise.next() * attack * std::exp(-time / click.decay);
        sound[i] += click.loudness * (body.pass(burst) + 0.6 * metal.pass(burst));
    }
}

std::vector<double> shutter()
{
    // The mirror goes up, the curtain runs, the mirror falls back.
    constexpr std::array<Click, 4> clicks{{{0.004, 0.010, 1.00, 2100},
                                           {0.022, 0.006, 0.35, 3200},
                                           {0.095, 0.014, 0.80, 1500},
                                           {0.118, 0.020, 0.25, 2600}}};
    std::vector<double> sound(static_cast<std::size_t>(length * rate), 0.0);
    Noise noise;
    for (const Click &click : clicks)
        addClick(sound, click, noise);

    double peak = 0;
    for (const double sample : sound)
        peak = std::max(peak, std::abs(sample));
    const std::size_t fade = rate / 50;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const double left = static_cast<double>(sound.size() - 1 - i) / fade;
        sound[i] *= 0.5 / peak * std::min(1.0, left);
    }
    return sound;
}

void append(std::string &bytes, std::uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xff));
}

std::string wav(const std::vector<double> &sound)
{
    const auto size = static_cast<std::uint32_t>(sound.size() * 2);
    std::string bytes = "RIFF";
    append(bytes, 36 + size, 4);
    bytes += "WAVEfmt ";
    append(bytes, 16, 4);
    append(bytes, 1, 2); // PCM
    append(bytes, 1, 2); // channels
    append(bytes, rate, 4);
    append(bytes, rate * 2, 4); // bytes per second
    append(bytes, 2, 2);        // bytes per frame
    append(bytes, 16, 2);       // bits per sample
    bytes += "data";
    append(bytes, size, 4);
    for (const double sample : sound)
        append(bytes, static_cast<std::uint16_t>(std::lround(sample * 32767)), 2);
    return bytes;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::cerr << "usage: make_shutter_sound <file.wav>\n";
        return 2;
    }
    const std::string bytes = wav(shutter());
    std::ofstream file(argv[1], std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        std::cerr << argv[1] << ": cannot write\n";
        return 1;
    }
    return 0;
}
