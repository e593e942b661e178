// Numbers as the page says them.

// The least of 1, 2 and 5, times a power of ten, that is no less.
export function roundStep(least) {
    const ten = 10 ** Math.floor(Math.log10(least));
    return [1, 2, 5, 10].find(factor => factor * ten >= least * 0.999) * ten;
}

// How many digits behind the point tell multiples of a step apart.
export const digitsOf = step => Math.min(Math.max(-Math.floor(Math.log10(step) + 1e-9), 0), 6);

// The multiples of a step between two numbers, and no more than there is room for.
export function multiples(step, least, most, room = 100) {
    const first = Math.ceil(least / step - 1e-9);
    const count = Math.min(Math.floor(most / step + 1e-9) - first + 1, room);
    return Array.from({ length: count > 0 ? count : 0 }, (_, i) => (first + i) * step);
}

// With a minus that is as wide as a plus, and none before a zero.
export function written(value, digits) {
    return value.toFixed(digits).replace(/^-(?=.*[1-9])/, '\u2212').replace('-', '');
}
