import Gio from 'gi://Gio';

import {Teller} from './teller.js';
import {TopBarItem} from './topBarItem.js';

/** All that is there while Pavonel runs. `ui` holds the modules of the Shell, which each version loads in its own way. */
export class Companion {
    constructor(ui) {
        this._parts = [];
        this._watch = Gio.bus_watch_name(Gio.BusType.SESSION, 'org.pavonel.Pavonel', Gio.BusNameWatcherFlags.NONE,
            (bus, name, pavonel) => {
                this._parts = [new Teller(ui, bus, pavonel), new TopBarItem(ui, bus, pavonel)];
            },
            () => this._leave());
    }

    destroy() {
        Gio.bus_unwatch_name(this._watch);
        this._leave();
    }

    _leave() {
        this._parts.forEach(part => part.destroy());
        this._parts = [];
    }
}
