#pragma once

// Why the last call of a thread failed. The numbers follow the classic audio-library codes, so
// that a log line reads the same as users know it; the logic prints them and never branches.
enum class EngineError : int {
    Ok = 0,
    Memory = 1,
    FileOpen = 2,
    Driver = 3,
    Handle = 5,
    Format = 6,
    Position = 7,
    Init = 8,
    Start = 9,
    Already = 14,
    IllegalType = 19,
    IllegalParam = 20,
    NotPlaying = 24,
    NotAvailable = 37,
    Timeout = 40,
    FileFormat = 41,
    Codec = 44,
    Unknown = -1,
};
