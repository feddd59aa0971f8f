#pragma once

// Whether a device answered that it only needs a moment: the same command may succeed a little later (SPC:
// UNIT ATTENTION; NOT READY or ILLEGAL REQUEST with "logical unit not ready").
inline bool isPassingCondition(unsigned char senseKey, unsigned char asc) {
    constexpr unsigned char NOT_READY = 2;
    constexpr unsigned char ILLEGAL_REQUEST = 5;
    constexpr unsigned char UNIT_ATTENTION = 6;
    constexpr unsigned char ASC_NOT_READY = 4;
    return senseKey == UNIT_ATTENTION ||
           ((senseKey == NOT_READY || senseKey == ILLEGAL_REQUEST) && asc == ASC_NOT_READY);
}

template <class Request>
bool isPassingCondition(Request const& request) {
    constexpr unsigned char CHECK_CONDITION = 2;
    return request.scsiStatus == CHECK_CONDITION && request.senseBuffer != nullptr &&
           isPassingCondition(request.senseBuffer[2] & 0x0F, request.senseBuffer[12]);
}
