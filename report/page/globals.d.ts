// What the scripts find in the browser that the checker has no types for.
declare const d3: any;
interface EventTarget { value?: any; checked?: any }
interface Event { key: string }
