#include <array>

#include "tests/simulation/gate.h"

namespace vorthmere::update::simulation {
namespace {

constexpr Extent part = Extent::part;
constexpr Extent whole = Extent::whole;

constexpr auto kQuery = std::to_array<Fault>({{2}, {3}, {5}, {21}, {53}, {64}, {67}, {123}, {267}, {1117}, {1231}});
constexpr auto kTargetQuery =
    std::to_array<Fault>({{2}, {3}, {5}, {21}, {32}, {53}, {64}, {67}, {123}, {267}, {362}, {1117}, {1920}, {1921}});
constexpr auto kListFolder = std::to_array<Fault>({{3},
                                                   {5},
                                                   {21},
                                                   {53},
                                                   {64},
                                                   {1117},
                                                   {.error = 5, .effect = part},
                                                   {.error = 55, .effect = part},
                                                   {.error = 64, .effect = part},
                                                   {.error = 1117, .effect = part}});
constexpr auto kFullPath = std::to_array<Fault>({{8}, {206}});
constexpr auto kFinalPath = std::to_array<Fault>({{1}, {3}, {5}, {40}, {64}});
constexpr auto kCreateFolder =
    std::to_array<Fault>({{3}, {5}, {19}, {21}, {53}, {112}, {.error = 64, .effect = whole}});
constexpr auto kRemoveFolder = std::to_array<Fault>(
    {{5}, {19}, {21}, {32}, {145}, {.error = 2, .effect = whole}, {.error = 64, .effect = whole}, {2}, {3}});
constexpr auto kDeleteFile = std::to_array<Fault>(
    {{2}, {3}, {5}, {19}, {21}, {32}, {53}, {.error = 2, .effect = whole}, {.error = 64, .effect = whole}});
constexpr auto kSetAttributes = std::to_array<Fault>({{2}, {3}, {5}, {19}, {21}, {.error = 64, .effect = whole}});
constexpr auto kMoveFile = std::to_array<Fault>({{2},
                                                 {3},
                                                 {5},
                                                 {19},
                                                 {21},
                                                 {32},
                                                 {53},
                                                 {64},
                                                 {112},
                                                 {1117},
                                                 {.error = 5, .effect = whole},
                                                 {.error = 64, .effect = whole}});
constexpr auto kCopyFile = std::to_array<Fault>({{2},
                                                 {3},
                                                 {5},
                                                 {19},
                                                 {21},
                                                 {32},
                                                 {53},
                                                 {112},
                                                 {362},
                                                 {1224},
                                                 {.error = 23, .effect = part},
                                                 {.error = 33, .effect = part},
                                                 {.error = 59, .effect = part},
                                                 {.error = 112, .effect = part},
                                                 {.error = 1117, .effect = part},
                                                 {.error = 64, .effect = whole}});
constexpr auto kOpenToRead = std::to_array<Fault>({{2}, {3}, {5}, {21}, {32}, {53}, {64}, {362}, {1117}, {1920}});
constexpr auto kCreateToWrite =
    std::to_array<Fault>({{2}, {3}, {5}, {19}, {21}, {32}, {53}, {112}, {1224}, {.error = 64, .effect = whole}});
constexpr auto kReadBytes = std::to_array<Fault>(
    {{0}, {21}, {23}, {33}, {55}, {59}, {64}, {109}, {1117}, {1167}, {.error = 0, .effect = part}});
constexpr auto kWriteBytes = std::to_array<Fault>(
    {{21}, {33}, {55}, {59}, {112}, {1117}, {1167}, {.error = 112, .effect = part}, {.error = 64, .effect = whole}});
constexpr auto kFlushFile =
    std::to_array<Fault>({{2}, {3}, {5}, {19}, {32}, {59}, {112}, {1117}, {.error = 64, .effect = whole}});
constexpr auto kCloseFile = std::to_array<Fault>({{.error = 59, .effect = part},
                                                  {.error = 64, .effect = part},
                                                  {.error = 112, .effect = part},
                                                  {.error = 64, .effect = whole}});
constexpr auto kOpenPipe = std::to_array<Fault>({{8}, {1450}});
constexpr auto kStart =
    std::to_array<Fault>({{2}, {3}, {5}, {8}, {32}, {193}, {206}, {216}, {225}, {267}, {740}, {1260}, {1455}, {4551}});
constexpr auto kOpenProcess = std::to_array<Fault>({{5}, {8}});
constexpr auto kWaitForEnd = std::to_array<Fault>({{6}, {258}});
constexpr auto kEndProcess = std::to_array<Fault>({{5}});
constexpr auto kExitCodeOf = std::to_array<Fault>({{1}, {6}, {259}, {0xC0000005}, {0xC0000135}});
constexpr auto kSystemFolder = std::to_array<Fault>({{5}});
constexpr auto kDigest = std::to_array<Fault>({{0xC0000008}, {0xC0000017}});
constexpr auto kCrackAddress = std::to_array<Fault>({{8}, {12005}});
constexpr auto kOpenInternet = std::to_array<Fault>({{8}, {12004}});
constexpr auto kSendRequest =
    std::to_array<Fault>({{8}, {12002}, {12007}, {12029}, {12030}, {12175}, {.error = 12002, .effect = whole}});
constexpr auto kReceiveResponse = std::to_array<Fault>({{12002}, {12030}, {12044}, {12152}, {12175}});
constexpr auto kQueryStatus =
    std::to_array<Fault>({{0}, {206}, {301}, {304}, {403}, {404}, {429}, {500}, {503}, {12150}});
constexpr auto kQueryContentLength = std::to_array<Fault>({{12150}});
constexpr auto kQueryDataAvailable = std::to_array<Fault>({{0}, {12002}, {12030}, {12152}});
constexpr auto kReadData = std::to_array<Fault>({{0}, {12002}, {12030}, {.error = 0, .effect = part}});

}  // namespace

std::span<const Fault> faultsOf(Operation operation) {
    switch (operation) {
        case Operation::entryAttributes:
        case Operation::entryFacts:
            return kQuery;
        case Operation::targetFacts:
        case Operation::openForItsName:
            return kTargetQuery;
        case Operation::listFolder:
            return kListFolder;
        case Operation::fullPath:
            return kFullPath;
        case Operation::finalPath:
            return kFinalPath;
        case Operation::createFolder:
            return kCreateFolder;
        case Operation::removeEmptyFolder:
            return kRemoveFolder;
        case Operation::deleteFile:
            return kDeleteFile;
        case Operation::setAttributes:
            return kSetAttributes;
        case Operation::moveFile:
            return kMoveFile;
        case Operation::copyFile:
            return kCopyFile;
        case Operation::openToRead:
            return kOpenToRead;
        case Operation::createToWrite:
            return kCreateToWrite;
        case Operation::readBytes:
            return kReadBytes;
        case Operation::writeBytes:
            return kWriteBytes;
        case Operation::flushFile:
            return kFlushFile;
        case Operation::closeFile:
            return kCloseFile;
        case Operation::openPipe:
            return kOpenPipe;
        case Operation::startCaptured:
        case Operation::startProgram:
            return kStart;
        case Operation::openProcess:
            return kOpenProcess;
        case Operation::waitForEnd:
            return kWaitForEnd;
        case Operation::endProcess:
            return kEndProcess;
        case Operation::exitCodeOf:
            return kExitCodeOf;
        case Operation::systemFolder:
            return kSystemFolder;
        case Operation::openSha256:
        case Operation::digestMemorySize:
        case Operation::beginDigest:
        case Operation::digestBytes:
        case Operation::finishDigest:
            return kDigest;
        case Operation::crackAddress:
            return kCrackAddress;
        case Operation::openSession:
        case Operation::connectTo:
        case Operation::createSecureGet:
            return kOpenInternet;
        case Operation::sendRequest:
            return kSendRequest;
        case Operation::receiveResponse:
            return kReceiveResponse;
        case Operation::queryStatus:
            return kQueryStatus;
        case Operation::queryContentLength:
            return kQueryContentLength;
        case Operation::queryDataAvailable:
            return kQueryDataAvailable;
        case Operation::readData:
            return kReadData;
        default:
            return {};
    }
}

}  // namespace vorthmere::update::simulation
