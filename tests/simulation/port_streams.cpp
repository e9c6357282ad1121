#include "platform/streams.h"

#include <algorithm>

#include "tests/simulation/passage.h"

namespace vorthmere::update {

using namespace simulation;

namespace {

bool closeAnyFile(Machine& machine, HandleId file) {
    if (machine.processes.isPipe(file)) return machine.processes.closePipe(file) == error::none;
    return machine.files.close(file) == error::none;
}

}  // namespace

void closeFileHandle(void* handle) noexcept {
    if (isAnyRunning() && handle != nullptr)
        passClosing(Operation::closeFileHandle, simulation::fileNameOf(handle),
                    [handle](Machine& machine) { return closeAnyFile(machine, toId(handle)); });
}

FileHandle openToRead(const std::filesystem::path& file, std::error_code& failure) {
    const std::string text = systemTextOf(file);
    return passOpening<FileHandle>(Operation::openToRead, text, failure, [&text](Machine& machine, HandleId& id) {
        return machine.files.openToRead(text, id);
    });
}

FileHandle createToWrite(const std::filesystem::path& file, std::error_code& failure) {
    const std::string text = systemTextOf(file);
    return passOpening<FileHandle>(Operation::createToWrite, text, failure, [&text](Machine& machine, HandleId& id) {
        return machine.files.createToWrite(text, id);
    });
}

std::size_t readBytes(const FileHandle& file, void* buffer, std::size_t size, std::error_code& failure) {
    std::size_t count = 0;
    std::uint32_t yielded = 0;
    const HandleId id = toId(file.get());
    const auto read = [&](Machine& machine, Extent extent) {
        const std::size_t most = extent == Extent::part ? std::max<std::size_t>(size / 2, 1) : size;
        auto* bytes = static_cast<char*>(buffer);
        const Error result = machine.processes.isPipe(id)
                                 ? machine.processes.readPipe(machine.files, id, bytes, most, count)
                                 : machine.files.read(id, bytes, most, count);
        if (result == error::invalidHandle) ++machine.wrongHandles;
        yielded = static_cast<std::uint32_t>(count);
        return result;
    };
    failure = toFailure(pass(Operation::readBytes, simulation::fileNameOf(file.get()), "", read, &yielded));
    return failure ? 0 : count;
}

std::error_code writeBytes(const FileHandle& file, const void* bytes, std::size_t size) {
    const HandleId id = toId(file.get());
    const auto write = [&](Machine& machine, Extent extent) {
        const std::size_t most = extent == Extent::part ? size / 2 : size;
        const Error result = machine.files.write(id, {static_cast<const char*>(bytes), most});
        if (result == error::invalidHandle) ++machine.wrongHandles;
        return result;
    };
    return toFailure(
        pass(Operation::writeBytes, simulation::fileNameOf(file.get()), std::to_string(size) + " bytes", write));
}

std::error_code flushFile(const std::filesystem::path& file) {
    const std::string text = systemTextOf(file);
    return toFailure(pass(Operation::flushFile, text, "",
                          [&text](Machine& machine, Extent) { return machine.files.flushFile(text); }));
}

// Closes the file even when it reports a failure; what could not be stored is lost.
std::error_code closeFile(FileHandle file) {
    const std::string name = simulation::fileNameOf(file.get());
    const HandleId id = toId(file.release());
    return toFailure(pass(Operation::closeFile, name, "", [id](Machine& machine, Extent extent) {
        if (extent == Extent::part) machine.files.loseHalf(id);
        const bool wasOpen = closeAnyFile(machine, id);
        if (!wasOpen) ++machine.wrongHandles;
        return wasOpen ? error::none : error::invalidHandle;
    }));
}

}  // namespace vorthmere::update
