/// @file
/// The whole library but bscan/pin_order.h and bscan/text.h, which a host includes on purpose: they
/// declare names in the global namespace that others use as well.
///
/// Conventions that hold throughout:
/// - Classes, enumerations and free functions of the model are in the global namespace; what
///   names results, limits and the version is in namespace bscan.
/// - Text is zero-terminated and copied when handed in. Text handed out stays the library's, and
///   says how long it is valid.
/// - A null argument gives a null or negative result, or changes nothing; it is never followed.
/// - Pin numbers count from 1, indexes and boundary register positions from 0.
/// - No operation throws or prints. What throws std::bad_alloc when memory is exhausted is copying
/// a
///   record, as it is for any value: a cell, a pair, an instruction, a register, a package map.
///   Objects are not locked: use each from one thread at a time,
///   and read one file at a time in a process.
#pragma once

#include <bscan/boundary_cell.h>
#include <bscan/byte_buffer.h>
#include <bscan/chain.h>
#include <bscan/description.h>
#include <bscan/device_pin_map.h>
#include <bscan/differential_pair.h>
#include <bscan/error_handler.h>
#include <bscan/instruction_register.h>
#include <bscan/limits.h>
#include <bscan/object.h>
#include <bscan/object_list.h>
#include <bscan/package_pin_map.h>
#include <bscan/parser.h>
#include <bscan/pin_driver.h>
#include <bscan/pin_name.h>
#include <bscan/pin_names.h>
#include <bscan/pin_node.h>
#include <bscan/register_access.h>
#include <bscan/result.h>
#include <bscan/scan_bits.h>
#include <bscan/scan_program.h>
#include <bscan/signal.h>
#include <bscan/version.h>
