import Gio from 'gi://Gio';
import GLib from 'gi://GLib';
import Meta from 'gi://Meta';
import Shell from 'gi://Shell';

const NAME = 'org.pavonel.Shell';
const PATH = '/org/pavonel/Shell';
const FRONT = '(uss(iiii)b)'; // process, class, instance, frame, whether it is fullscreen
const XML = `<node><interface name="${NAME}">
    <method name="Front"><arg type="${FRONT}" direction="out"/></method>
    <method name="Pointer"><arg type="(ii)" direction="out"/></method>
    <method name="Grab"><arg type="s" direction="in"/><arg type="u" direction="out"/></method>
    <method name="Ungrab"><arg type="u" direction="in"/></method>
    <signal name="FrontChanged"><arg type="${FRONT}"/></signal>
    <signal name="Pressed"><arg type="u"/></signal>
</interface></node>`;

/** Tells Pavonel, and nobody else, of the window in front, the pointer, and the shortcuts that it asked for. */
export class Teller {
    constructor({Main}, bus, pavonel) {
        this._wm = Main.wm;
        this._bus = bus;
        this._pavonel = pavonel;
        this._grabs = new Set();
        global.display.connectObject(
            'notify::focus-window', () => this._followFocus(),
            'accelerator-activated', (_, action) => this._notePress(action), this);
        this._followFocus();
        this._object = Gio.DBusExportedObject.wrapJSObject(XML, this);
        this._object.export(bus, PATH);
        this._name = Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE, null, null);
    }

    destroy() {
        Gio.bus_unown_name(this._name);
        this._object.unexport();
        this._grabs.forEach(action => global.display.ungrab_accelerator(action));
        this._window?.disconnectObject(this);
        global.display.disconnectObject(this);
    }

    FrontAsync(_, call) {
        this._answer(call, () => new GLib.Variant(`(${FRONT})`, [this._front()]));
    }

    PointerAsync(_, call) {
        this._answer(call, () => new GLib.Variant('((ii))', [global.get_pointer().slice(0, 2)]));
    }

    /** Answers 0 for a combination that is taken. */
    GrabAsync([keys], call) {
        this._answer(call, () => {
            const action = global.display.grab_accelerator(keys, Meta.KeyBindingFlags.IGNORE_AUTOREPEAT);
            if (action !== Meta.KeyBindingAction.NONE) {
                this._grabs.add(action);
                this._wm.allowKeybinding(Meta.external_binding_name_for_action(action), Shell.ActionMode.ALL);
            }
            return new GLib.Variant('(u)', [action]);
        });
    }

    UngrabAsync([action], call) {
        this._answer(call, () => {
            if (this._grabs.delete(action))
                global.display.ungrab_accelerator(action);
            return null;
        });
    }

    _answer(call, answer) {
        if (call.get_sender() === this._pavonel)
            call.return_value(answer());
        else
            call.return_dbus_error('org.freedesktop.DBus.Error.AccessDenied', 'Only Pavonel is answered.');
    }

    _tell(signal, value) {
        this._bus.emit_signal(this._pavonel, PATH, NAME, signal, value);
    }

    _followFocus() {
        this._window?.disconnectObject(this);
        this._window = global.display.focus_window;
        this._window?.connectObject(
            'notify::fullscreen', () => this._tellFront(),
            'size-changed', () => this._tellFront(), this);
        this._tellFront();
    }

    _tellFront() {
        this._tell('FrontChanged', new GLib.Variant(`(${FRONT})`, [this._front()]));
    }

    _front() {
        const window = this._window;
        if (!window)
            return [0, '', '', [0, 0, 0, 0], false];
        const {x, y, width, height} = window.get_frame_rect();
        return [Math.max(window.get_pid(), 0), window.get_wm_class() ?? '', window.get_wm_class_instance() ?? '',
            [x, y, width, height], window.is_fullscreen()];
    }

    _notePress(action) {
        if (this._grabs.has(action))
            this._tell('Pressed', new GLib.Variant('(u)', [action]));
    }
}
