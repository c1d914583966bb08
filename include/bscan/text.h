/// @file
/// Operations on zero-terminated text in buffers that the caller owns.
///
/// Letters are the ASCII letters, whatever the locale; searches are case-sensitive. A null text
/// counts as empty in searches and comparisons; a null destination is left alone. The operations
/// that write do not know the size of the destination: the caller guarantees the room that each
/// of them names.
#pragma once

#include <bscan/export.h>
#include <bscan/object.h>

/// Searches, trims and substrings. The object has no state that matters; one on the stack serves
/// any number of calls.
class BSCAN_EXPORT LString : public LObject {
public:
    LString();
    LString(const LString&) = default;
    LString& operator=(const LString&) = default;
    ~LString() override;

    /// @return the position of the first occurrence of @p sought in @p text; -1 without one.
    int Find(const char* text, const char* sought);
    /// @return the position of the first @p character in @p text; -1 without one.
    int Find(const char* text, char character);
    /// @return the position of the first character of @p text that is in @p set; -1 without one.
    int FindOneOf(const char* text, const char* set);
    /// @return the position of the last @p character in @p text; -1 without one.
    int ReverseFind(const char* text, char character);
    /// @return the position of the last character of @p text that is in @p set; -1 without one.
    int ReverseFindOneOf(const char* text, const char* set);

    /// Copies the first @p count characters of @p source and a terminator.
    ///
    /// A count of 0 or less gives an empty text, one beyond the source's length the whole source.
    /// The buffers may be the same or overlap. The destination needs room for the result and its
    /// terminator. A null buffer changes nothing.
    void Left(char* destination, const char* source, int count);
    /// Copies the last @p count characters of @p source and a terminator; limits as for Left().
    void Right(char* destination, const char* source, int count);

    /// Removes spaces, tabs, carriage returns and line feeds from the front, in place.
    void TrimLeft(char* text);
    /// Removes spaces, tabs, carriage returns and line feeds from the end, in place.
    void TrimRight(char* text);

private:
    int unused_ = 0;
};

/// Copies text and a terminator.
///
/// @param destination  has room for what is copied and a terminator; null changes nothing.
/// @param source  the text; null changes nothing.
/// @param count  how many characters at the most; 0 or less for all.
/// @param reserved  not used; pass 0.
BSCAN_EXPORT void util_strncpy(char* destination, const char* source, int count, int reserved);
/// @copydoc util_strncpy(char*, const char*, int, int)
BSCAN_EXPORT void util_strncpy(char* destination, char* source, int count, int reserved);

/// Appends text to a zero-terminated destination.
///
/// @param destination  has room for both texts and a terminator; null changes nothing.
/// @param source  the text; null changes nothing.
/// @param count  how many characters at the most; 0 or less for all.
/// @param reserved  not used; pass 0.
BSCAN_EXPORT void util_strncat(char* destination, const char* source, int count, int reserved);
/// @copydoc util_strncat(char*, const char*, int, int)
BSCAN_EXPORT void util_strncat(char* destination, char* source, int count, int reserved);

/// Compares as `strcmp` does, with all letters taken as lower case.
BSCAN_EXPORT int stricmp(const char* left, const char* right);
/// The comparison of stricmp() for writable texts; it changes neither.
BSCAN_EXPORT int strcmpi(char* left, char* right);

/// Turns the letters of a text into lower case in place. @return its argument.
BSCAN_EXPORT char* strlwr(char* text);
/// Turns the letters of a text into upper case in place. @return its argument.
BSCAN_EXPORT char* strupr(char* text);
