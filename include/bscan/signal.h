/// @file
/// The logic values of pins and cells, and the modes of ports.
#pragma once

/// A logic value of a pin or a boundary-scan cell, as the safe, disable and result columns of
/// BOUNDARY_REGISTER write it. In a scan vector only SIG_1 is a 1.
enum eSignal : int {
    SIG_0,      ///< logic low
    SIG_1,      ///< logic high
    SIG_X,      ///< unknown, don't care, or not captured
    SIG_Z,      ///< high impedance
    SIG_PULL0,  ///< pulled low while the driver is off
    SIG_PULL1,  ///< pulled high while the driver is off
    SIG_WEAK0,  ///< weakly low while the driver is off
    SIG_WEAK1,  ///< weakly high while the driver is off
};

/// The mode of a port; also a direction asked for or shown, with PORT_IN for receiving and
/// PORT_OUT for driving.
enum PortType : int {
    PORT_IN,      ///< "in"
    PORT_OUT,     ///< "out"
    PORT_INOUT,   ///< "inout"
    PORT_BUFFER,  ///< "buffer"
    PORT_NONE,    ///< any other mode, such as linkage; as a result: no such port, or no direction
};
