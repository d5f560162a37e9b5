#include "contract.h"

#include "common/setup.h"
#include "jni_support.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

bool checkCount(EngineCall &call, const char *name, jint count, int max)
{
    return (count >= 1 && count <= max) ||
           call.refuse("%s must lie between 1 and %d, but is %d", name, max, count);
}

bool checkLevel(EngineCall &call, jint level)
{
    return (level >= 0 && level < MAXPL) ||
           call.refuse("PL must lie between 0 and %d, but is %d", MAXPL - 1, level);
}

bool checkBandwidth(EngineCall &call, const char *name, jfloat bandwidth)
{
    return (std::isfinite(bandwidth) && bandwidth >= 0.0F) ||
           call.refuse("%s must be a finite bandwidth of at least 0, but is %g", name,
                       static_cast<double>(bandwidth));
}

bool checkArray(EngineCall &call, const char *name, jarray array, jsize minLength)
{
    if (!array)
        return call.refuse("%s must not be null", name);
    const jsize length = call.env->GetArrayLength(array);
    return length >= minLength ||
           call.refuse("%s needs %d elements or more, but has %d", name, minLength, length);
}

bool readMatrix(EngineCall &call, const char *name, jobjectArray array, int rows, int columns,
                double (&matrix)[MAXOA][MAXPL])
{
    if (!checkArray(call, name, array, rows))
        return false;
    for (int i = 0; i < rows; ++i) {
        char rowName[64];
        std::snprintf(rowName, sizeof rowName, "%s[%d]", name, i);
        const LocalRef<jfloatArray> row{
            call.env, static_cast<jfloatArray>(call.env->GetObjectArrayElement(array, i))};
        if (!checkArray(call, rowName, row.get(), columns))
            return false;
        const FloatElements floats{call.env, row.get()};
        if (!floats)
            return false;
        std::copy_n(floats.values().begin(), columns, matrix[i]);
    }
    return true;
}

bool readLinkState(EngineCall &call, jfloatArray cap, jobjectArray rbw, double (&capacities)[MAXOA],
                   double (&reservations)[MAXOA][MAXPL])
{
    if (!checkArray(call, "cap", cap, NBOA))
        return false;
    const FloatElements floats{call.env, cap};
    if (!floats || !readMatrix(call, "rbw", rbw, NBOA, NBPL, reservations))
        return false;
    std::copy_n(floats.values().begin(), NBOA, capacities);
    for (int oa = 0; oa < NBOA; ++oa) {
        if (std::isnan(capacities[oa]))
            return call.refuse("cap[%d] must be a number", oa);
        for (int p = 0; p < NBPL; ++p) {
            const double rbwHere = reservations[oa][p];
            if (!std::isfinite(rbwHere) || rbwHere < 0.0)
                return call.refuse(
                    "rbw[%d][%d] must be a finite bandwidth of at least 0, but is %g", oa, p,
                    rbwHere);
        }
    }
    return true;
}
